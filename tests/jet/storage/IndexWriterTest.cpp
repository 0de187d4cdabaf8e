// Changing index trees: the entries afterwards, and the shape of the tree by which everybody finds them.

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "jet/storage/Bytes.h"
#include "jet/storage/Catalog.h"
#include "jet/storage/IndexCheck.h"
#include "jet/storage/IndexCursor.h"
#include "jet/storage/IndexWriter.h"
#include "jet/storage/OwnFile.h"
#include "jet/storage/PageAllocator.h"
#include "jet/storage/TestFiles.h"
#include "jet/storage/UsageMap.h"
#include "support/Fehlernummer.h"

namespace wendel::jet {
namespace {

using Entry = std::pair<std::string, RowId>;
using Random = std::mt19937;
constexpr unsigned kSeed = 20121224;

std::vector<Entry> entriesOf(File& file, const TableDef& table, const Index& index,
                             IndexCursor::Direction way = IndexCursor::Direction::kForward) {
    std::vector<Entry> entries;
    IndexCursor cursor(file, table, index);
    for (cursor.seek({}, way); cursor.next();)
        entries.emplace_back(cursor.key(), cursor.rowId());
    return entries;
}

// A database with one table and one index, whose rows nobody cares about.
class OneIndex {
  public:
    explicit OneIndex(Version version) {
        test::createFileWithTable(copy_.path(), version, "t", {{.name = "n"}},
                                  {{.name = "i", .columns = {{"n", false}}}});
        database_ = std::make_unique<Database>(copy_.path(), Access::kReadWrite);
        table = database_->table("t");
    }
    File& file() { return database_->file(); }
    const Index& index() const { return table->indexes[0]; }
    std::uint8_t height() { return IndexPage(file(), file().page(index().root), table->page).level(); }
    std::size_t pages() { return readUsageMap(file(), index().pages).size(); }

    std::shared_ptr<const TableDef> table;

  private:
    test::TemporaryCopy copy_;
    std::unique_ptr<Database> database_;
};

std::string textKey(Random& random, std::size_t shared, std::size_t most) {
    std::string key = '\x7F' + std::string(shared, 'x');
    for (std::size_t i = random() % most; i-- > 0;)
        key += static_cast<char>('a' + random() % 26);
    return key + '\0';
}

std::string numberKey(std::uint64_t number) {
    std::string key = "\x7F";
    appendBig(key, number, 4);
    return key;
}

struct KeyKind {
    const char* name;
    std::function<std::string(Random&, unsigned)> make;
    std::uint8_t height[2];  // at least, in Jet 4 and Jet 3
};
const KeyKind kKinds[] = {
    {"rising", [](Random&, unsigned n) { return numberKey(n); }, {1, 1}},
    {"falling", [](Random&, unsigned n) { return numberKey(~n); }, {1, 1}},
    {"random", [](Random& random, unsigned) { return numberKey(random()); }, {1, 1}},
    {"few", [](Random& random, unsigned) { return numberKey(random() % 5); }, {1, 1}},
    {"few long",
     [](Random& random, unsigned n) {
         return "\x7F" + std::string(random() % 3, 'p') + std::string(120, static_cast<char>('q' + n % 3)) +
                '\0';
     },
     {1, 1}},
    {"long", [](Random& random, unsigned) { return textKey(random, 150, 400); }, {2, 2}},
    {"any length",
     [](Random& random, unsigned) { return textKey(random, 0, random() % 3 == 0 ? 850 : 20); },
     {2, 2}},
};

class TreeTest : public testing::TestWithParam<std::tuple<Version, std::size_t>> {};

TEST_P(TreeTest, HoldsWhatASetHolds) {
    const auto [version, kindNumber] = GetParam();
    const KeyKind& kind = kKinds[kindNumber];
    SCOPED_TRACE(std::string(kind.name) + ", seed " + std::to_string(kSeed));
    Random random(kSeed);
    OneIndex one(version);
    std::set<Entry> model;
    std::vector<Entry> list;
    unsigned made = 0;
    const auto expectSame = [&] {
        checkIndexTree(one.file(), *one.table, one.index());
        const std::vector<Entry> wanted(model.begin(), model.end());
        ASSERT_EQ(entriesOf(one.file(), *one.table, one.index()), wanted);
        std::vector<Entry> back =
            entriesOf(one.file(), *one.table, one.index(), IndexCursor::Direction::kBackward);
        std::reverse(back.begin(), back.end());
        ASSERT_EQ(back, wanted);
    };
    PageAllocator allocator(one.file());
    IndexWriter writer(one.file(), allocator, *one.table, one.index());
    for (int phase = 0; phase < 5; ++phase) {
        File::Writing writing(one.file());
        for (int step = 0; step < 2500; ++step) {
            if (list.empty() || random() % 10 < (phase % 2 == 0 ? 9u : 1u)) {
                Entry entry{kind.make(random, made), makeRowId(100 + made / 200, made % 200 & 0xFF)};
                ++made;
                if (kindNumber > 1 && random() % 4 == 0 && !list.empty())
                    entry.first = list[random() % list.size()].first;
                const auto same = model.lower_bound({entry.first, 0});
                const bool known = same != model.end() && same->first == entry.first;
                ASSERT_EQ(writer.contains(entry.first), known);
                writer.insert(entry.first, entry.second);
                model.insert(entry);
                list.push_back(entry);
            } else {
                std::swap(list[random() % list.size()], list.back());
                const auto [key, row] = list.back();
                ASSERT_TRUE(step % 50 == 0 ? writer.removeByRow(row) : writer.remove(key, row));
                ASSERT_FALSE(writer.remove(key, row));
                model.erase(list.back());
                list.pop_back();
            }
            if (step % 600 == 0) expectSame();
        }
        writing.commit(Durability::kSoon);
        expectSame();
        std::size_t bytes = 0;
        for (const auto& [key, row] : list)
            bytes += key.size() + 8;
        // What is left after deletions lies together again, in few levels.
        const std::size_t least = bytes / indexPageCapacity(one.file().layout());
        EXPECT_LE(one.pages(), (bytes > 1500 ? 2 : 1) + 3 * least);
    }
    EXPECT_GE(one.height(), kind.height[version == Version::kJet3]);

    File::Writing writing(one.file());
    const std::size_t grown = one.pages();
    std::shuffle(list.begin(), list.end(), random);
    writer.build(list);
    expectSame();
    EXPECT_LE(one.pages(), grown);
    for (const auto& [key, row] : list)
        ASSERT_TRUE(writer.remove(key, row));
    model.clear();
    expectSame();
    EXPECT_EQ(one.pages(), 1u);
    EXPECT_EQ(one.height(), 0);
}

INSTANTIATE_TEST_SUITE_P(Both, TreeTest,
                         testing::Combine(testing::Values(Version::kJet4, Version::kJet3),
                                          testing::Range<std::size_t>(0, std::size(kKinds))));

TEST(IndexWriter, CountsDistinctKeysAndFillsPagesInOrder) {
    OneIndex one(Version::kJet4);
    {
        File::Writing writing(one.file());
        PageAllocator allocator(one.file());
        IndexWriter writer(one.file(), allocator, *one.table, one.index());
        for (unsigned n = 0; n < 6000; ++n)
            writer.insert(numberKey(n / 2), makeRowId(100, n & 0xFF) + (n >> 8) * 256);
        writing.commit(Durability::kSoon);
    }
    // Nine bytes each: 401 fill a page without a shared beginning; a dozen more go in with it.
    EXPECT_LE(one.pages(), 6000u / 401 + 2);
    const Layout& layout = one.file().layout();
    const PagePtr definition = one.file().page(one.table->page);
    EXPECT_EQ(loadU32(&(*definition)[layout.defVariablePart + kStatisticsKeys]), 3000u);
    OneIndex other(Version::kJet3);
    File::Writing writing(other.file());
    PageAllocator allocator(other.file());
    IndexWriter writer(other.file(), allocator, *other.table, other.index());
    EXPECT_EQ(fehlernummerVon([&] { writer.insert(std::string(893, 'x'), 1); }), jetfehler::kRowTooLarge)
        << "no two of it fit into a node";
}

}  // namespace
}  // namespace wendel::jet
