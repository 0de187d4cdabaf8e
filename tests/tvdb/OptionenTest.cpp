#include "tvdb/Optionen.h"

#include <gtest/gtest.h>

namespace wendel {
namespace {

TEST(Optionen, WertWirdInJederSchreibweiseGefunden) {
    // clang-format off
    const std::pair<const char*, const char*> kFaelle[] = {
        {"W=1;Zeit=2012;X=0", "2012"}, {"W=1|Zeit=2012", "2012"}, {"W=1,Zeit=2012", "2012"}, {"Zeit=a=b", "a=b"},
        {"W=1\r\nZeit=2012\r\n", "2012"}, {"W=1; zEIT =2012", "2012"}, {"Zeit=1;Zeit=2", "1"}, {"Zeit=", ""},
        {"Zeit", "(Ersatz)"}, {"XZeit=1", "(Ersatz)"}, {"W=Zeit=1", "(Ersatz)"}, {"", "(Ersatz)"}};
    // clang-format on
    for (const auto& [optionen, erwartet] : kFaelle)
        EXPECT_EQ(Optionen::GetOption(optionen, "Zeit", "(Ersatz)"), erwartet) << optionen;
}

TEST(Optionen, WertWirdAnSeinerStelleErsetztOderAngehaengt) {
    // clang-format off
    const std::pair<const char*, const char*> kFaelle[] = {
        {"", "Egal=1"}, {" egal = 0;X=y", "Egal=1;X=y"}, {"X=y;Egal=0;Z=", "X=y;Egal=1;Z="}, {"X=y", "X=y;Egal=1"},
        {"X=y;", "X=y;Egal=1"}, {"X=y|Z=", "X=y|Z=|Egal=1"}, {"X=y\r\nZ=", "X=y\r\nZ=\r\nEgal=1"}};
    // clang-format on
    for (const auto& [vorher, nachher] : kFaelle)
        EXPECT_EQ(Optionen::SetOption(vorher, "Egal", "1"), nachher);
}

}  // namespace
}  // namespace wendel
