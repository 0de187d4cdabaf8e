// Statements against everything that can interrupt them: killed processes, full disks, power cuts, journals
// that do not belong to their file or are damaged. The file is always the state before or after a statement.

#include "jet/storage/Journal.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <random>
#include <string>

#include "jet/storage/Bytes.h"
#include "jet/storage/DurableCalls.h"
#include "jet/storage/SampleFile.h"
#include "jet/storage/TestFiles.h"
#include "support/Fehlernummer.h"
#include "support/Kindprozess.h"

namespace wendel::jet {
namespace {

using test::Fault;
namespace fs = std::filesystem;

constexpr unsigned kPages = 12;
constexpr unsigned kStatements = 9;
constexpr std::size_t kSmallCache = 4 * 4096;  // so that the larger statements spill

// Statement k: a counter that all change, a place of its own, a larger one over many pages, new pages.
// put(page, offset, value) for every change; grow() before those of a new page.
void statement(unsigned k, const std::function<void(unsigned, unsigned, std::uint32_t)>& put,
               const std::function<void()>& grow) {
    put(3, 100, k);
    put(4 + k % 3, k * 29, k);
    if (k % 3 == 2) {
        grow();
        put(kPages + k / 3, 8, k);
    }
    if (k % 4 == 3)
        for (unsigned n = 0; n < 300; ++n)
            put(4 + n % 8, 4 * (n / 8) + 512, k + n);
}

// The file's bytes after the first `count` statements.
std::string image(unsigned count) {
    std::string bytes = test::sampleFile(kPages);
    for (unsigned k = 1; k <= count; ++k) {
        statement(
            k,
            [&](unsigned page, unsigned offset, std::uint32_t value) {
                storeU32(reinterpret_cast<std::uint8_t*>(bytes.data()) + page * 4096 + offset, value);
            },
            [&] { bytes.resize(bytes.size() + 4096); });
    }
    return bytes;
}

void run(File& file, unsigned k, Durability durability) {
    File::Writing writing(file);
    statement(
        k,
        [&](unsigned page, unsigned offset, std::uint32_t value) {
            storeU32(&(*file.edit(page))[offset], value);
        },
        [&] { file.appendPage(); });
    writing.commit(durability);
}

Durability durabilityOf(unsigned k) { return k % 2 == 0 ? Durability::kNow : Durability::kSoon; }

// All statements, with a checkpoint among them; done(k) behind each.
void runAll(const std::string& path, const std::function<void(unsigned)>& done) {
    File file(path, Access::kReadWrite, kSmallCache);
    for (unsigned k = 1; k <= kStatements; ++k) {
        run(file, k, durabilityOf(k));
        done(k);
        if (k == 5) file.checkpoint();
    }
}

// How many statements the file has as it is read; nullopt when that is none of their states.
std::optional<unsigned> statementsIn(const std::string& path, Access access = Access::kReadWrite) {
    File file(path, access);
    const File::Reading reading(file);
    std::string bytes;
    for (std::uint32_t page = 0; page < file.pageCount(); ++page) {
        const PagePtr content = file.page(page);
        bytes.append(content->begin(), content->end());
    }
    for (unsigned k = 0; k <= kStatements; ++k)
        if (bytes == image(k)) return k;
    return std::nullopt;
}

class JournalTest : public testing::Test {
  protected:
    void SetUp() override {
        fs::remove(copy_.path());  // or some file systems wait for the disk
        copy_.write(test::sampleFile(kPages));
    }
    void TearDown() override { test::orderFault(Fault::kNone, 0); }

    // Runs in a process of its own that ends without closing anything; returns what it reported last.
    unsigned inChild(const std::function<void(const std::function<void(unsigned)>&)>& work) {
        Kind child([&](int reports) {
            work([&](unsigned k) {
                const char report = static_cast<char>(k);
                [[maybe_unused]] const auto n = ::write(reports, &report, 1);
            });
            ::_exit(1);
        });
        const std::string reported = child.rest();
        status_ = child.warte();
        return reported.empty() ? 0 : static_cast<unsigned>(reported.back());
    }
    bool childRanToItsEnd() const { return WIFEXITED(status_) && WEXITSTATUS(status_) == 1; }

    void leaveHotJournal(unsigned statements) {
        inChild([&](const auto&) {
            auto* const file = new File(copy_.path(), Access::kReadWrite);
            for (unsigned k = 1; k <= statements; ++k)
                run(*file, k, Durability::kNow);
            ::_exit(1);
        });
    }
    void expectOnly(unsigned statements) {
        EXPECT_TRUE(test::readFile(copy_.path()) == image(statements));
        EXPECT_EQ(std::distance(fs::directory_iterator(copy_.folder()), {}), 1);
    }
    std::string journal() const { return copy_.path() + "-journal"; }

    test::TemporaryCopy copy_;
    int status_ = 0;
};

TEST_F(JournalTest, KilledAtAnyCallTheFileIsBeforeOrAfterTheStatement) {
    for (const Fault fault : {Fault::kKilled, Fault::kKilledHalfWay}) {
        unsigned n = 1;
        for (bool finished = false; !finished; ++n) {
            SCOPED_TRACE("call " + std::to_string(n) +
                         (fault == Fault::kKilled ? " not done" : " half done"));
            SetUp();
            const unsigned reported = inChild([&](const auto& report) {
                test::orderFault(fault, n);
                runAll(copy_.path(), report);
            });
            finished = childRanToItsEnd();
            // Whoever opens it first, for reading or writing, with another process beside or not.
            if (n % 3 == 0) {
                EXPECT_TRUE(statementsIn(copy_.path(), Access::kReadOnly).has_value());
            }
            const std::optional<unsigned> found = statementsIn(copy_.path());
            ASSERT_TRUE(found.has_value());
            EXPECT_TRUE(*found == reported || *found == reported + 1) << *found << " of " << reported;
            expectOnly(*found);
        }
        EXPECT_GT(n, 30u);
    }
}

TEST_F(JournalTest, KilledWhileTheJournalIsBroughtInItIsBroughtInAgain) {
    bool finished = false;
    for (unsigned n = 1; !finished; ++n) {
        SetUp();
        leaveHotJournal(7);
        inChild([&](const auto&) {
            test::orderFault(n % 2 == 0 ? Fault::kKilled : Fault::kKilledHalfWay, (n + 1) / 2);
            statementsIn(copy_.path());
        });
        finished = childRanToItsEnd();
        EXPECT_EQ(statementsIn(copy_.path(), Access::kReadOnly), 7u) << n;
        EXPECT_EQ(statementsIn(copy_.path()), 7u) << n;
        expectOnly(7);
    }
}

TEST_F(JournalTest, AFullDiskOrAWriteErrorLeavesNothingOfTheStatement) {
    const struct {
        Fault fault;
        int number;
    } rows[] = {{Fault::kDiskFull, jetfehler::kDiskFull}, {Fault::kInputOutput, jetfehler::kNoAccess}};
    for (const auto& row : rows) {
        for (unsigned n = 1;; ++n) {
            SCOPED_TRACE(std::to_string(row.number) + " from call " + std::to_string(n));
            SetUp();
            test::orderFault(Fault::kNone, 0);
            File file(copy_.path(), Access::kReadWrite, kSmallCache);
            test::orderFault(row.fault, n);
            unsigned done = 0, failures = 0;
            while (done < kStatements && failures < 2) {
                const int number = fehlernummerVon([&] { run(file, done + 1, durabilityOf(done + 1)); });
                done += number == 0 ? 1 : 0;
                failures += number == 0 ? 0 : 1;
                EXPECT_TRUE(number == 0 || number == row.number) << number;
                if (done == 5) file.checkpoint();
            }
            test::orderFault(Fault::kNone, 0);
            EXPECT_EQ(statementsIn(copy_.path(), Access::kReadOnly), done);
            while (done < kStatements)
                run(file, ++done, Durability::kSoon);
            EXPECT_TRUE(file.checkpoint());
            EXPECT_TRUE(test::readFile(copy_.path()) == image(kStatements));
            if (failures == 0) break;
        }
    }
}

TEST_F(JournalTest, APowerCutTakesNoStatementThatWasPromised) {
    constexpr unsigned kRounds = 400, kSeed = 1899;
    SCOPED_TRACE(kSeed);
    std::vector<std::size_t> callsAt(kStatements + 1);
    const test::Files before = {{copy_.path(), image(0)}};
    test::startNoting(copy_.folder());
    runAll(copy_.path(), [&](unsigned k) { callsAt[k] = test::callsNoted(); });
    const std::vector<test::Call> calls = test::endNoting();
    for (unsigned round = 0; round < kRounds; ++round) {
        const std::size_t count = round % (calls.size() + 1);
        SCOPED_TRACE("call " + std::to_string(count) + ", round " + std::to_string(round));
        for (const auto& entry : fs::directory_iterator(copy_.folder()))
            fs::remove(entry);
        for (const auto& [path, bytes] : test::afterPowerCut(before, calls, count, kSeed + round))
            std::ofstream(path, std::ios::binary) << bytes;
        unsigned least = 0;
        for (unsigned k = 1; k <= kStatements; ++k)
            if (durabilityOf(k) == Durability::kNow && callsAt[k] <= count) least = k;
        const std::optional<unsigned> found = statementsIn(copy_.path());
        ASSERT_TRUE(found.has_value());
        EXPECT_GE(*found, least);
        expectOnly(*found);
    }
}

TEST_F(JournalTest, ContentsDecideWhetherItBelongsToTheFile) {
    const auto poke = [this](std::size_t at) {
        std::fstream file(copy_.path(), std::ios::in | std::ios::out | std::ios::binary);
        file.seekp(static_cast<std::streamoff>(at)).put('!');
    };
    const struct {
        const char* name;
        std::function<void()> change;
        bool broughtIn;
    } rows[] = {
        {"nothing", [] {}, true},
        {"another time",
         [&] { fs::last_write_time(copy_.path(), fs::file_time_type::clock::now() + std::chrono::hours(1)); },
         true},
        {"both copied without times",
         [&] {
             const std::string bytes = test::readFile(copy_.path());
             fs::remove(copy_.path());
             copy_.write(bytes);
         },
         true},
        {"a page that no statement changed", [&] { poke(11 * 4096 + 5); }, true},
        {"a page of the journal, elsewhere", [&] { poke(3 * 4096 + 2000); }, false},
        {"a page of the journal, in the same place", [&] { poke(3 * 4096 + 100); }, false},
        {"longer", [&] { fs::resize_file(copy_.path(), (kPages + 1) * 4096); }, false},
        {"a backup from before in its place", [&] { copy_.write(test::sampleFile(kPages, 'x')); }, false},
        {"the journal without its head",
         [&] { std::fstream(journal(), std::ios::in | std::ios::out | std::ios::binary).put('?'); }, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        SetUp();
        leaveHotJournal(2);
        row.change();
        const std::string changed = test::readFile(copy_.path());
        {
            File reader(copy_.path(), Access::kReadOnly);
            EXPECT_EQ(loadU32(reader.page(3)->data() + 100) == 2, row.broughtIn);
        }
        EXPECT_TRUE(test::readFile(copy_.path()) == changed);
        {
            File writer(copy_.path(), Access::kReadWrite);
            run(writer, 3, Durability::kNow);
        }
        EXPECT_FALSE(fs::exists(journal()));
        EXPECT_EQ(fs::remove(journal() + ".alt"), !row.broughtIn);
        File file(copy_.path(), Access::kReadOnly);
        EXPECT_EQ(loadU32(file.page(4 + 2)->data() + 2 * 29) == 2,
                  row.broughtIn);  // a place of statement 2 alone
        EXPECT_EQ(loadU32(file.page(3)->data() + 100), 3u);
    }
}

// Not even a sealed record may lead outside a page or the file.
TEST_F(JournalTest, DamagedJournalsEndBeforeTheDamage) {
    leaveHotJournal(7);
    const std::string sound = test::readFile(journal());
    constexpr unsigned kSeed = 42;
    SCOPED_TRACE(kSeed);
    std::mt19937 random(kSeed);
    for (int round = 0; round < 300; ++round) {
        SetUp();
        std::string bytes = sound;
        for (unsigned flips = 1 + random() % 4; flips > 0; --flips)
            bytes[kJournalRuns + random() % (bytes.size() - kJournalRuns)] ^=
                static_cast<char>(1 + random() % 255);
        if (round % 5 == 0) bytes.resize(random() % bytes.size());
        std::ofstream(journal(), std::ios::binary) << bytes;
        const std::optional<unsigned> found = statementsIn(copy_.path());
        ASSERT_TRUE(found.has_value());
        EXPECT_LT(*found, 7u);
        expectOnly(*found);
    }
}

TEST(JournalScan, RefusesSealedRecordsThatLeadOutside) {
    const struct {
        const char* name;
        char kind;
        std::uint32_t page;
        std::uint16_t offset, length;
        bool taken;
    } rows[] = {{"a range", 'R', 3, 4090, 6, true},
                {"behind the page", 'R', 3, 4090, 7, false},
                {"without bytes", 'R', 3, 0, 0, false},
                {"a whole page", 'W', 3, 0, 4096, true},
                {"a longer one", 'W', 3, 0, 4097, false},
                {"a shifted one", 'W', 3, 1, 8, false},
                {"the last page", 'R', kMaxPages - 1, 0, 8, true},
                {"one further", 'R', kMaxPages, 0, 8, false},
                {"unknown", 'Z', 3, 0, 8, false}};
    JournalHeader header;
    header.pageSize = 4096;
    for (const auto& row : rows) {
        const std::size_t seal = kJournalRuns + 8u + row.length;
        std::vector<std::uint8_t> bytes = header.encoded();
        bytes.resize(seal + 16);
        bytes[kJournalRuns] = static_cast<std::uint8_t>(row.kind);
        storeU24(&bytes[kJournalRuns + 1], row.page);
        storeU16(&bytes[kJournalRuns + 4], row.offset);
        storeU16(&bytes[kJournalRuns + 6], row.length);
        bytes[seal] = 'S';
        bytes[seal + 1] = 20;
        bytes[seal + 6] = 8;
        const std::span<const std::uint8_t> all(bytes);
        const std::uint64_t run = journalHash(all.subspan(kJournalRuns, seal - kJournalRuns),
                                              journalRunSeed(header.salt, kJournalRuns));
        storeU64(&bytes[seal + 8], journalHash(all.subspan(seal, 8), run));
        const JournalContents contents =
            scanJournal([&](std::uint64_t offset, std::span<std::uint8_t> buffer) -> std::size_t {
                if (offset >= bytes.size()) return 0;
                const std::size_t n = std::min(buffer.size(), bytes.size() - offset);
                std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(offset), n, buffer.begin());
                return n;
            });
        EXPECT_EQ(contents.index.contains(row.page), row.taken) << row.name;
    }
}

}  // namespace
}  // namespace wendel::jet
