// Several processes on one file at the same time: readers see whole statements, no change is lost, nobody
// waits for ever, and the only errors are those after which the access layer tries again.

#include <gtest/gtest.h>

#include <sys/mman.h>

#include <atomic>
#include <chrono>
#include <deque>
#include <functional>
#include <iostream>

#include "jet/proof/Proof.h"
#include "jet/storage/Schema.h"
#include "platform/Fehler.h"
#include "support/Kindprozess.h"

namespace wendel::jet::proof {
namespace {

using Clock = std::chrono::steady_clock;
constexpr int kAccounts = 120;  // on several pages
const std::string kLockErrors = ",3186,3187,3188,3260,3261,3167,3050,";

// Shared by all processes.
struct Counts {
    std::atomic<int> increments, transfers, rows, reads, torn, locked, otherErrors, lastError;
};

void createAccounts(const std::string& path) {
    createDatabaseFile(path, Version::kJet4);
    Engine engine;
    const auto database = engine.open(path);
    database->execute(
        "Create Table Konto (ID Long Constraint PrimaryKey Primary Key, Stand Long, Summe Long, Fuell "
        "Text(255))",
        kFailOnError);
    database->execute("Create Index Stand On Konto (Stand)", kFailOnError);
    database->execute("Create Table Posten (ID Counter Constraint PrimaryKey Primary Key, Wer Long, Nr Long)",
                      kFailOnError);
    for (int id = 1; id <= kAccounts; ++id)
        database->execute(
            "Insert Into Konto Values (" + std::to_string(id) + ",0,0,'" + std::string(200, 'x') + "')",
            kFailOnError);
}

// Runs the statement until no other process is in its way.
bool persistent(Counts& counts, const std::function<void()>& statement) {
    for (int attempt = 0; attempt < 100; ++attempt) {
        try {
            statement();
            return true;
        } catch (const Fehler& failure) {
            const bool lock =
                kLockErrors.find("," + std::to_string(failure.nummer()) + ",") != std::string::npos;
            ++(lock ? counts.locked : counts.otherErrors);
            if (lock) continue;
            counts.lastError = failure.nummer();
            std::cerr << failure.beschreibung() << std::endl;
            return false;
        }
    }
    return false;
}

void read(Datenbank& database, Counts& counts) {
    const auto rs = database.openRecordset(
        "Select Min(Stand) as a, Max(Stand) as b, Sum(Summe) as c, Count(*) as d from Konto", kSnapshot,
        kForwardOnly);
    ++counts.reads;
    if (rs->feld(0) != rs->feld(1) || rs->feld(2).alsLong() != 0 || rs->feld(3).alsLong() != kAccounts)
        ++counts.torn;
}

void write(Datenbank& database, Counts& counts, int who, int n) {
    switch (n % 3) {
        case 0:
            if (persistent(counts, [&] { database.execute("Update Konto Set Stand=Stand+1", kFailOnError); }))
                ++counts.increments;
            break;
        case 1: {
            const std::string amount = std::to_string(n % 1000);  // hours fit into a Long
            if (persistent(counts, [&] {
                    database.execute("Update Konto Set Summe=Summe+IIf(ID=1," + amount + ",-" + amount +
                                         ") Where ID=1 or ID=" + std::to_string(2 + n % (kAccounts - 1)),
                                     kFailOnError);
                }))
                ++counts.transfers;
            break;
        }
        default:
            persistent(counts, [&] {
                const auto rs = database.openRecordset("Select * from Posten", kDynaset, kAppendOnly);
                for (int i = 0; i < 5; ++i) {
                    persistent(counts, [&] { rs->addNew(); });
                    rs->setzeFeld("Wer", Variant::lang(who));
                    rs->setzeFeld("Nr", Variant::lang(n * 5 + i));
                    if (persistent(counts, [&] { rs->update(); })) ++counts.rows;
                }
            });
    }
}

TEST(TwoProcesses, LoseNothingAndSeeWholeStatements) {
    const test::TemporaryCopy copy;
    createAccounts(copy.path());
    auto* counts = static_cast<Counts*>(
        ::mmap(nullptr, sizeof(Counts), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    ASSERT_NE(counts, MAP_FAILED);
    const int seconds = setting("WENDEL_HAMMER_SECONDS", 3);
    const auto end = Clock::now() + std::chrono::seconds(seconds);
    std::deque<Kind> children;
    for (int who = 0; who < 3; ++who) {  // two that write and read, one that only reads
        children.emplace_back([&, who](int) {
            ::alarm(static_cast<unsigned>(seconds + 30));  // the end of one that waits for ever
            try {
                Engine engine;
                auto database = engine.open(copy.path());
                for (int n = 1; Clock::now() < end; ++n) {
                    if (who != 2) write(*database, *counts, who, n);
                    persistent(*counts, [&] { read(*database, *counts); });
                    if (n % 40 == 0) persistent(*counts, [&] { database = engine.open(copy.path()); });
                }
            } catch (const std::exception& failure) {
                std::cerr << failure.what() << std::endl;
                ::_exit(2);
            }
        });
    }
    for (Kind& child : children)
        EXPECT_EQ(child.warte(), 0);
    std::cout << counts->increments << " updates of all rows, " << counts->transfers << " of two, "
              << counts->rows << " rows added, " << counts->reads << " reads, " << counts->torn << " torn, "
              << counts->locked << " lock errors, " << counts->otherErrors << " others\n";
    EXPECT_EQ(counts->torn, 0);
    EXPECT_EQ(counts->otherErrors, 0) << counts->lastError;
    EXPECT_GT(counts->increments, 0);
    Engine engine;
    const auto database = engine.open(copy.path());
    EXPECT_EQ(single(*database, "Select Max(Stand) from Konto").alsLong(), counts->increments);
    EXPECT_EQ(single(*database, "Select Min(Stand) from Konto").alsLong(), counts->increments);
    EXPECT_EQ(single(*database, "Select Sum(Summe) from Konto").alsLong(), 0);
    EXPECT_EQ(single(*database, "Select Count(*) from Posten").alsLong(), counts->rows);
    EXPECT_EQ(newFindings(copy.path()), "");
    ::munmap(counts, sizeof(Counts));
}

}  // namespace
}  // namespace wendel::jet::proof
