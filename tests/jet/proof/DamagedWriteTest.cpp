// Changes of damaged files: refused or done, never with harm to the pages of other tables; and the whole-file
// check that the other tests rely on sees each kind of damage.

#include <gtest/gtest.h>

#include <filesystem>
#include <iostream>

#include "jet/proof/Proof.h"
#include "jet/proof/RandomChanges.h"
#include "jet/storage/DataPage.h"
#include "jet/storage/ReadEverything.h"
#include "support/Fehlernummer.h"

namespace wendel::jet::proof {
namespace {

constexpr unsigned kSeed = 2718;

class DamagedFile : public testing::Test {
  protected:
    void SetUp() override {
        if (!test::haveData()) GTEST_SKIP() << "no example files at " << test::dataPath("");
    }
    test::TemporaryCopy copy_;
};

TEST_F(DamagedFile, ChangesLeaveOtherTablesAlone) {
    Random random(kSeed);
    SCOPED_TRACE(kSeed);
    int done = 0, rounds = 0;
    std::size_t damaged = 0;  // tables and indexes that could not be read to their end
    for (const char* name :
         {"tvdaten-klein.mdb", "typen.mdb", "echte/overflowV2000.mdb", "echte/common2V1997.mdb"}) {
        const std::string original = test::readFile(test::dataPath(name));
        Database sound(test::dataPath(name), Access::kReadOnly);
        const std::size_t pageSize = sound.file().layout().pageSize;
        std::vector<CatalogEntry> tables;
        for (const CatalogEntry& entry : sound.entries())
            if (!entry.system && !entry.name.starts_with("MSys")) tables.push_back(entry);
        for (int round = 0; round < 60 * setting("WENDEL_ROUNDS", 1) && !HasFailure(); ++round, ++rounds) {
            const CatalogEntry& changed = tables[below(random, tables.size())];
            // Damage lies in the changed table more often than elsewhere, and mostly in the heads of pages.
            const std::set<std::uint32_t> own = pagesOf(sound.file(), *sound.table(changed.name));
            const std::size_t page =
                oneIn(random, 4)
                    ? 1 + below(random, original.size() / pageSize - 1)
                    : *std::next(own.begin(), static_cast<std::ptrdiff_t>(below(random, own.size())));
            std::string image = original;
            for (std::size_t flips = 1 + below(random, 4); flips > 0; --flips)
                image[page * pageSize + below(random, oneIn(random, 3) ? pageSize : 80)] =
                    static_cast<char>(random());
            copy_.write(image);
            std::filesystem::remove(copy_.path() + "-journal");
            SCOPED_TRACE(std::string(name) + " round " + std::to_string(round) + ", page " +
                         std::to_string(page) + " damaged, " + changed.name + " changed");
            const int number = fehlernummerVon([&] {
                Database database(copy_.path(), Access::kReadWrite);
                damaged += test::readEverything(database).damaged;
                if (const auto table = loadTableDef(database.file(), changed.page, changed.name))
                    done += changeAtRandom(database, table, random, 12) ? 1 : 0;
                EXPECT_LT(database.file().pageCount(), original.size() / pageSize + 120);
            });
            EXPECT_TRUE(number == 0 || isRefusal(number)) << number;
            const std::string after = test::readFile(copy_.path());
            ASSERT_GE(after.size(), image.size());
            for (const CatalogEntry& entry : sound.entries()) {
                if (entry.page == changed.page) continue;
                for (const std::uint32_t other : pagesOf(sound.file(), *sound.table(entry.name)))
                    EXPECT_EQ(after.compare(other * pageSize, pageSize, image, other * pageSize, pageSize), 0)
                        << "page " << other << " of " << entry.name;
            }
        }
    }
    std::cout << done << " of " << rounds << " damaged files could be changed\n";
    EXPECT_GT(done, rounds / 4);
    EXPECT_GT(damaged, 30u);
}

// Each row breaks one thing in a sound file.
TEST_F(DamagedFile, TheCheckSeesEveryKindOfDamage) {
    const std::string image = test::readFile(test::dataPath("tvdaten-klein.mdb"));
    copy_.write(image);
    const std::set<std::string> before = findings(copy_.path());
    Database sound(copy_.path(), Access::kReadOnly);
    const auto guide = sound.table("Sendungen"), details = sound.table("SendungenDetails");
    const auto firstPage = [&](RowPointer map) {
        return std::size_t{readUsageMap(sound.file(), map).front()} * 4096;
    };
    const std::size_t data = firstPage(guide->ownedPages),
                      memos = firstPage(details->columns[1].longValuePages);
    const std::size_t leaf = firstPage(guide->indexes[1].pages), definition = guide->page * std::size_t{4096};
    const struct {
        const char* name;
        std::size_t at;
        int value;
        const char* finding;
    } rows[] = {{"free space", data + 2, -1, "freier Platz"},
                {"owner of a data page", data + 4, -1, "keine Datenseite"},
                {"slot deleted", data + kJet4Layout.dataSlots + 1, 0xC0, "Zeilen vermerkt"},
                {"slot abandoned", data + kJet4Layout.dataSlots + 1, 0x8F, "verlassene Zeile"},
                {"row count", definition + kJet4Layout.defRowCount, -1, "Zeilen vermerkt"},
                {"last number", definition + kJet4Layout.defLastAutonumber + 1, 0, "über dem letzten"},
                {"memo deleted", memos + kJet4Layout.dataSlots + 1, 0xC0, "Langer Wert"},
                {"key in an index", leaf + kJet4Layout.indexEntries + 3, -1, "Sendungen."},
                {"link between leaves", leaf + kJet4Layout.indexNext, -1, "Sendungen."},
                {"global map",
                 4096 + loadU16(reinterpret_cast<const std::uint8_t*>(&image[4096 + kJet4Layout.dataSlots])) +
                     5u + 6u,
                 -1, "ist frei und gehört zu"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        std::string damaged = image;
        damaged[row.at] = static_cast<char>(row.value == -1 ? damaged[row.at] ^ 0x55 : row.value);
        copy_.write(damaged);
        EXPECT_NE(newFindings(copy_.path(), before).find(row.finding), std::string::npos)
            << newFindings(copy_.path(), before);
    }
}

}  // namespace
}  // namespace wendel::jet::proof
