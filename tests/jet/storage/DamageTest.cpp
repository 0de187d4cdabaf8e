// Files that are not what they should be: refused or read as far as they go, never changed.

#include <gtest/gtest.h>

#include <string>

#include "jet/storage/Bytes.h"
#include "jet/storage/Rc4.h"
#include "jet/storage/ReadEverything.h"
#include "jet/storage/TestFiles.h"
#include "jet/storage/UsageMap.h"
#include "support/Fehlernummer.h"

namespace wendel::jet {
namespace {

void put(std::string& bytes, std::size_t at, std::uint32_t value, unsigned size) {
    for (unsigned i = 0; i < size; ++i)
        bytes[at + i] = static_cast<char>(value >> (8 * i) & 0xFF);
}

int openError(const std::string& path) {
    return fehlernummerVon([&] { Database database(path, Access::kReadWrite); });
}

TEST(OpenError, NamesWhatIsWrongWithThePath) {
    const test::TemporaryCopy copy;
    copy.write("x");
    EXPECT_EQ(openError(copy.folder() + "/fehlt.mdb"), 3024);
    EXPECT_EQ(openError(copy.folder() + "/fehlt/tvdaten.mdb"), 3044);
    EXPECT_EQ(openError(copy.path() + "/tvdaten.mdb"), 3044);
    EXPECT_EQ(openError(copy.folder()), 3051);
    EXPECT_EQ(openError("/dev/null"), 3343);
}

class DamageTest : public testing::Test {
  protected:
    void SetUp() override {
        if (!test::haveData()) GTEST_SKIP() << "no example files at " << test::dataPath("");
        image_ = test::readFile(test::dataPath("tvdaten-klein.mdb"));
    }
    std::string image_;
    test::TemporaryCopy copy_;
};

TEST_F(DamageTest, ForeignAndCutFilesAreRefused) {
    const auto with = [this](std::size_t at, char value) {
        std::string changed = image_;
        changed[at] = value;
        return changed;
    };
    const struct {
        const char* name;
        std::string content;
        int number;
    } rows[] = {{"empty", "", 3343},
                {"other signature", with(5, 's'), 3343},
                {".accdb of 2007", with(0x14, 2), 3343},
                {"header alone", image_.substr(0, 4096), 3343},
                {"half a page too short", image_.substr(0, image_.size() - 2048), 3049},
                {"without the catalog's rows", image_.substr(0, 5 * 4096), 3049},
                {"Jet 4 read as Jet 3", with(0x14, 0), 3049}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        copy_.write(row.content);
        EXPECT_EQ(openError(copy_.path()), row.number);
    }
}

TEST_F(DamageTest, CirclesAndWrongPagesEndInAnError) {
    Database sound(test::dataPath("tvdaten-klein.mdb"), Access::kReadOnly);
    const auto sender = sound.table("Sender");
    const std::uint32_t leaf = sender->indexes[0].root;
    std::string looping = image_;
    put(looping, leaf * 4096 + kJet4Layout.indexNext, leaf, 4);
    put(looping, leaf * 4096 + kJet4Layout.indexPrevious, leaf, 4);
    copy_.write(looping);
    {
        Database database(copy_.path(), Access::kReadOnly);
        EXPECT_EQ(test::readEverything(database).damaged, 2u);  // one index, forwards and backwards
    }
    looping = image_;
    put(looping, sender->page * 4096 + kDefinitionNext, sender->page, 4);
    copy_.write(looping);
    Database database(copy_.path(), Access::kReadOnly);
    EXPECT_EQ(fehlernummerVon([&] { database.table("Sender"); }), 3049);
    EXPECT_NE(database.table("Sendungen"), nullptr);
    const std::uint32_t last = database.file().pageCount() - 1;
    for (const std::uint32_t page : {0u, 1u, last, last + 1, 0xFFFFFFu})  // a catalog entry can name any page
        EXPECT_EQ(fehlernummerVon([&] { loadTableDef(database.file(), page, "x"); }), 3049) << page;
}

TEST_F(DamageTest, MovedRowsThatPointInACircleEndInAnError) {
    std::string bytes = test::readFile(test::dataPath("typen.mdb"));
    Database sound(test::dataPath("typen.mdb"), Access::kReadOnly);
    const auto table = sound.table("Ueberlauf");
    std::size_t pointers = 0;
    for (const std::uint32_t page : readUsageMap(sound.file(), table->ownedPages)) {
        const std::size_t base = std::size_t{page} * 4096;
        const auto* p = reinterpret_cast<const std::uint8_t*>(bytes.data()) + base;
        for (unsigned slot = 0; slot < loadU16(p + kJet4Layout.dataSlotCount); ++slot) {
            const std::uint16_t word = loadU16(p + kJet4Layout.dataSlots + 2 * slot);
            if ((word & kSlotDeleted) != kSlotPointer) continue;
            ++pointers;
            put(bytes, base + (word & kSlotOffsetMask), page << 8 | slot, 4);
        }
    }
    ASSERT_GT(pointers, 0u);
    copy_.write(bytes);
    Database database(copy_.path(), Access::kReadOnly);
    TableScan scan(database.file(), *database.table("Ueberlauf"));
    std::size_t failed = 0;
    for (int n = 0; n < 200; ++n)
        failed += fehlernummerVon([&] { scan.next(); }) == 3049 ? 1 : 0;
    EXPECT_EQ(failed, pointers);
}

TEST_F(DamageTest, EncodedFilesAreReadAsTheOthers) {
    constexpr std::uint32_t kKey = 0x1BADB002;
    std::string encoded = image_;
    // The header's mask is a XOR as well, so the key goes straight into it.
    for (unsigned i = 0; i < 4; ++i) {
        char& byte = encoded[kHeaderPageKey + i];
        byte = static_cast<char>(byte ^ static_cast<char>(kKey >> (8 * i)));
    }
    for (std::uint32_t page = 1; page < encoded.size() / 4096; ++page) {
        std::string key(4, '\0');
        put(key, 0, kKey ^ page, 4);
        rc4({reinterpret_cast<const std::uint8_t*>(key.data()), 4},
            {reinterpret_cast<std::uint8_t*>(encoded.data()) + page * 4096, 4096});
    }
    copy_.write(encoded);
    Database plain(test::dataPath("tvdaten-klein.mdb"), Access::kReadOnly);
    Database database(copy_.path(), Access::kReadOnly);
    EXPECT_TRUE(database.file().encoded());
    const test::Found found = test::readEverything(database), expected = test::readEverything(plain);
    EXPECT_EQ(found.damaged, 0u);
    EXPECT_EQ(found.cells, expected.cells);
    EXPECT_EQ(found.entries, expected.entries);
}

}  // namespace
}  // namespace wendel::jet
