// Damaged files after repair: every row that lies on a sound page is there, and what was lost is kept beside.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <map>
#include <random>
#include <string>

#include "jet/storage/Bytes.h"
#include "jet/storage/Repair.h"
#include "jet/storage/Table.h"
#include "jet/storage/TestFiles.h"
#include "jet/storage/UsageMap.h"
#include "jet/storage/WholeFile.h"
#include "support/Fehlernummer.h"

namespace wendel::jet {
namespace {

namespace fs = std::filesystem;

constexpr char kGuide[] = "tvdaten-klein.mdb";

class RepairTest : public testing::Test {
  protected:
    void SetUp() override {
        if (!test::haveData()) GTEST_SKIP() << "no example files at " << test::dataPath("");
        use(kGuide);
    }

    void use(const std::string& name) {
        image_ = test::readFile(test::dataPath(name));
        pageSize_ = image_[kHeaderVersion] == 0 ? 2048 : 4096;
    }

    const std::string& path() const { return copy_.path(); }
    bool originalKept() const { return fs::exists(path() + ".defekt"); }

    // Repairs the image as it is now; nothing else may be left in the folder.
    void repair() {
        for (const auto& entry : fs::directory_iterator(copy_.folder()))
            fs::remove(entry.path());
        copy_.write(image_);
        repairDatabaseFile(path());
        const auto files = std::distance(fs::directory_iterator(copy_.folder()), {});
        EXPECT_EQ(files, originalKept() ? 2 : 1);
        EXPECT_TRUE(!originalKept() || test::readFile(path() + ".defekt") == image_);
    }

    std::uint8_t* page(std::uint32_t number) {
        return reinterpret_cast<std::uint8_t*>(image_.data()) + number * pageSize_;
    }
    void destroy(std::uint32_t number) { std::fill_n(page(number), pageSize_, std::uint8_t{0xA5}); }

    std::string image_;
    std::size_t pageSize_ = 0;
    test::TemporaryCopy copy_;
};

std::size_t countOf(const std::map<std::string, test::Rows>& tables) {
    std::size_t count = 0;
    for (const auto& [name, rows] : tables)
        count += rows.size();
    return count;
}

TEST_F(RepairTest, SoundFilesKeepEverything) {
    for (const char* name :
         {kGuide, "typen.mdb", "echte/adox_jet4.mdb", "echte/overflowV2000.mdb", "echte/common2V1997.mdb"}) {
        SCOPED_TRACE(name);
        use(name);
        repair();
        EXPECT_FALSE(originalKept());
        EXPECT_EQ(test::allRows(path()), test::allRows(test::dataPath(name)));
        EXPECT_EQ(test::checkedIndexes(path()), test::checkedIndexes(test::dataPath(name)));
    }
}

// Pages of every kind but rows and definitions: nothing is lost but what long values lay there.
TEST_F(RepairTest, AnyOtherPageCostsNoRow) {
    const std::string sound = image_;
    const auto rows = test::allRows(test::dataPath(kGuide), false);
    const auto indexes = test::checkedIndexes(test::dataPath(kGuide));
    std::map<std::pair<std::uint8_t, std::uint32_t>, int> tried;
    for (std::uint32_t number = 1; number < sound.size() / 4096; ++number) {
        image_ = sound;
        const std::uint32_t owner = loadU32(page(number) + kPageOwner);
        const bool userRows =
            page(number)[0] == 1 && owner != 0 && owner != kLongValueOwner && owner != 3 && owner != 1;
        const bool userDefinition = page(number)[0] == 2 && number > 5;
        // Pages of one kind and owner are as good as each other; the bits of a map have no owner.
        const std::uint32_t group = page(number)[0] == 5 ? 0 : owner;
        if (userRows || userDefinition || ++tried[{page(number)[0], group}] > 2) continue;
        SCOPED_TRACE(number);
        destroy(number);
        repair();
        EXPECT_EQ(test::allRows(path(), false), rows);
        EXPECT_EQ(test::checkedIndexes(path()), indexes);
    }
    EXPECT_GT(tried.size(), 12u);
}

TEST_F(RepairTest, PagesOfRowsCostTheirRows) {
    const std::string sound = image_;
    const auto all = test::allRows(test::dataPath(kGuide));
    Database database(test::dataPath(kGuide), Access::kReadOnly);
    for (const char* name : {"Sender", "Sendungen", "SendungenDetails", "Markierungen"}) {
        SCOPED_TRACE(name);
        const std::uint32_t lost = readUsageMap(database.file(), database.table(name)->ownedPages).back();
        std::size_t rowsThere = 0;
        for (TableScan scan(database.file(), *database.table(name)); scan.next();)
            rowsThere += pageOf(scan.row().id()) == lost ? 1 : 0;
        image_ = sound;
        destroy(lost);
        repair();
        EXPECT_TRUE(originalKept());
        EXPECT_EQ(countOf(test::allRows(path())), countOf(all) - rowsThere);
        image_ = sound;
        destroy(database.table(name)->page);
        repair();
        EXPECT_TRUE(originalKept());
        auto others = all;
        others.erase(name);
        EXPECT_EQ(test::allRows(path()), others);
        test::checkedIndexes(path());
    }
}

// A row whose bytes do not fit together goes; one with a day that is no number, or a lost memo, stays.
TEST_F(RepairTest, DamagedRowsGoAloneAndDamagedValuesBecomeNull) {
    Database database(test::dataPath(kGuide), Access::kReadOnly);
    const auto rowIn = [&](const char* table) {
        TableScan scan(database.file(), *database.table(table));
        EXPECT_TRUE(scan.next());
        std::uint8_t* home = page(pageOf(scan.row().id()));
        return home + (loadU16(home + kJet4Layout.dataSlots + 2 * slotOf(scan.row().id())) & kSlotOffsetMask);
    };
    storeU16(rowIn("SendungenDetails"), 0x7FFF);  // more columns than the table has
    const auto dates = database.table("Sendungen");
    const auto date = std::find_if(dates->columns.begin(), dates->columns.end(),
                                   [](const Column& c) { return c.type == ColumnType::kDate && c.fixed; });
    ASSERT_NE(date, dates->columns.end());
    storeU64(rowIn("Sendungen") + 2 + date->fixedOffset, 0x7FF8000000000000);
    const auto details = database.table("SendungenDetails");
    const Column& memo = details->columns[details->findColumn("Beschreibung").value()];
    destroy(readUsageMap(database.file(), memo.longValuePages).front());
    repair();
    EXPECT_TRUE(originalKept());
    const auto expected = test::allRows(test::dataPath(kGuide), false);
    const auto found = test::allRows(path());
    EXPECT_EQ(found.at("SendungenDetails").size() + 1, expected.at("SendungenDetails").size());
    EXPECT_EQ(found.at("Sendungen").size(), expected.at("Sendungen").size());
    const auto& texts = found.at("SendungenDetails");
    EXPECT_TRUE(std::any_of(texts.begin(), texts.end(), [](const std::string& text) {
        return text.find("|Null|") != std::string::npos;
    }));
    test::checkedIndexes(path());
}

TEST_F(RepairTest, RowsThatAUniqueIndexForbidsStay) {
    Database database(test::dataPath(kGuide), Access::kReadOnly);
    const auto table = database.table("Sendungen");
    const Index& index = *table->findIndex("SenderKennung");
    std::uint8_t* definition = page(table->page);
    std::uint8_t* block = std::search(definition, definition + pageSize_, "\x83\x07\0", "\x83\x07\0" + 4);
    block += index.real * kJet4Layout.realIndexSize;
    block[kJet4Layout.realIndexFlags] |= kIndexUnique;
    repair();
    EXPECT_EQ(test::allRows(path()), test::allRows(test::dataPath(kGuide)));
    EXPECT_EQ(test::checkedIndexes(path()), test::checkedIndexes(test::dataPath(kGuide)));
}

TEST_F(RepairTest, HeadersAndEndsAreMended) {
    const std::string sound = image_;
    const auto rows = test::allRows(test::dataPath(kGuide));
    const struct {
        const char* name;
        std::function<void()> damage;
    } cases[] = {
        {"header lost", [&] { destroy(0); }},
        {"signature", [&] { image_[6] = 'x'; }},
        {"seems encoded", [&] { image_[kHeaderPageKey] = static_cast<char>(~image_[kHeaderPageKey]); }},
        {"seems of another order", [&] { image_[0x6F] = static_cast<char>(~image_[0x6F]); }},
        {"a part of a page too much", [&] { image_ += "abc"; }}};
    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        image_ = sound;
        row.damage();
        repair();
        EXPECT_TRUE(originalKept());
        EXPECT_EQ(test::allRows(path()), rows);
    }
    image_ = sound.substr(0, sound.size() - 100 * 4096 - 1000);
    repair();
    EXPECT_TRUE(originalKept());
    EXPECT_GT(countOf(test::allRows(path())), 900u);
}

// The catalog's page of rows: the tables are found without it, and named as its indexes tell.
TEST_F(RepairTest, TablesAreFoundWithoutTheCatalog) {
    Database database(test::dataPath(kGuide), Access::kReadOnly);
    destroy(
        readUsageMap(database.file(), loadTableDef(database.file(), kCatalogPage, {})->ownedPages).front());
    repair();
    EXPECT_TRUE(originalKept());
    Database repaired(path(), Access::kReadOnly);
    for (const char* name : {"Sender", "Sendungen", "SendungenDetails", "Markierungen"})
        EXPECT_NE(repaired.table(name), nullptr) << name;
    EXPECT_EQ(countOf(test::allRows(path())), countOf(test::allRows(test::dataPath(kGuide))));
}

TEST_F(RepairTest, RefusesWhatItMustNotReplace) {
    const std::string text(20000, 'x');
    copy_.write(text);
    EXPECT_EQ(fehlernummerVon([&] { repairDatabaseFile(path()); }), 3343);
    EXPECT_EQ(test::readFile(path()), text);
    EXPECT_EQ(fehlernummerVon([&] { repairDatabaseFile(path() + "x"); }), 3024);
}

// Earlier originals are never overwritten, and a repaired file needs no second repair.
TEST_F(RepairTest, EachDamagedOriginalIsKept) {
    image_[6] = 'x';
    repair();
    copy_.write(image_);
    repairDatabaseFile(path());
    EXPECT_TRUE(fs::exists(path() + ".defekt2"));
    repairDatabaseFile(path());
    EXPECT_FALSE(fs::exists(path() + ".defekt3"));
}

// Random bytes anywhere: always a file in the end that can be read, or the old one.
TEST_F(RepairTest, RandomDamageNeverDoesHarm) {
    constexpr unsigned kSeed = 815;
    SCOPED_TRACE(kSeed);
    std::mt19937 random(kSeed);
    for (const char* name : {"echte/overflowV2000.mdb", "echte/common2V1997.mdb", "typen.mdb"}) {
        use(name);
        const std::string sound = image_;
        for (int round = 0; round < (image_.size() > 1000000 ? 4 : 25); ++round) {
            image_ = sound;
            for (std::size_t flips = 1 + random() % 40; flips > 0; --flips) {
                const std::size_t within = random() % 2 != 0 ? random() % 200 : random() % pageSize_;
                image_[random() % (image_.size() / pageSize_) * pageSize_ + within] =
                    static_cast<char>(random());
            }
            const int number = fehlernummerVon([&] { repair(); });
            ASSERT_TRUE(number == 0 || number == 3049 || number == 3343 || number == 3027) << number;
            if (number == 0) test::checkedIndexes(path());
            EXPECT_TRUE(number == 0 || test::readFile(path()) == image_);
        }
    }
}

}  // namespace
}  // namespace wendel::jet
