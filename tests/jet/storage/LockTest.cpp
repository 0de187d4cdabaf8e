// Several processes, or Files, on one database: who waits for whom and how long, what each sees, and what is
// left beside the file.

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "jet/storage/Bytes.h"
#include "jet/storage/File.h"
#include "jet/storage/ReplacingLock.h"
#include "jet/storage/SampleFile.h"
#include "jet/storage/TestFiles.h"
#include "support/Fehlernummer.h"
#include "support/Kindprozess.h"

namespace wendel::jet {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

std::uint32_t number(File& file) { return loadU32(file.page(3)->data()); }

void write(File& file, std::uint32_t value) {
    File::Writing writing(file);
    storeU32(file.edit(3)->data(), value);
    writing.commit(Durability::kSoon);
}

class LockTest : public testing::Test {
  protected:
    LockTest() {
        copy_.write(test::sampleFile(6));
        File file(copy_.path(), Access::kReadWrite);
        write(file, 1);
    }
    // While it lives the last state is known to be of our own making, however new it is.
    std::unique_ptr<File> witness() {
        auto file = std::make_unique<File>(path(), Access::kReadWrite);
        write(*file, 2);
        write(*file, 1);
        EXPECT_TRUE(file->checkpoint());
        return file;
    }
    // As a killed process leaves it.
    void leaveInJournal(std::uint32_t value) {
        const Kind killed([&](int ready) {
            File file = open();
            write(file, value);
            Kind::bleibe(ready);
        });
        killed.lies();
    }
    std::size_t entries() const {
        return static_cast<std::size_t>(std::distance(fs::directory_iterator(copy_.folder()), {}));
    }
    std::uint32_t readAnew() const {
        File file = open();
        return number(file);
    }
    File open(File::Opening opening = File::Opening::kDone) const {
        return File(copy_.path(), Access::kReadWrite, File::kDefaultCacheBytes, opening);
    }
    const std::string& path() const { return copy_.path(); }

    test::TemporaryCopy copy_;
};

TEST_F(LockTest, AWriterWaitsASecondAndNamesTheOther) {
    std::string computer(256, '\0');
    ::gethostname(computer.data(), computer.size());
    computer = computer.substr(0, std::min<std::size_t>(computer.find('\0'), 31));
    const auto witnessed = witness();
    Kind neighbour([&](int ready) {
        File file = open();
        const File::Writing writing(file);
        storeU32(file.edit(3)->data(), 99);
        Kind::bleibe(ready);
    });
    neighbour.lies();
    File file = open();
    const std::function<void()> ways[] = {[&] { write(file, 2); }, [&] { open(File::Opening::kWriting); }};
    for (const auto& way : ways) {
        const auto start = Clock::now();
        const Gemeldet failure = fehlerVon(way);
        EXPECT_EQ(failure.nummer, 3260);
        EXPECT_EQ(failure.beschreibung,
                  "Aktualisieren nicht möglich; momentane Sperrung durch Benutzer 'Admin' auf Computer '" +
                      computer + "'.");
        EXPECT_GE(Clock::now() - start, 1s);
        EXPECT_LT(Clock::now() - start, 3s);
    }
    EXPECT_EQ(number(file), 1u);
    neighbour.toete(SIGKILL);  // and with it its lock and its statement
    neighbour.warte();
    write(file, 2);
    EXPECT_FALSE(file.changed());
    EXPECT_EQ(number(file), 2u);
}

TEST_F(LockTest, AReaderKeepsItsStateWhileOthersWrite) {
    const auto witnessed = witness();
    File reader = open(), writer = open();
    auto reading = std::make_unique<File::Reading>(reader);
    EXPECT_FALSE(reader.changed());
    write(writer, 2);
    EXPECT_FALSE(writer.changed());
    EXPECT_TRUE(reader.changed());
    EXPECT_EQ(number(reader), 1u);
    EXPECT_EQ(fehlernummerVon([&] { write(reader, 3); }), 3260);  // its pages are of yesterday
    EXPECT_FALSE(writer.checkpoint());
    reading.reset();
    EXPECT_TRUE(writer.checkpoint());
    EXPECT_FALSE(writer.changed());
    EXPECT_TRUE(reader.changed());
    EXPECT_EQ(loadU32(reinterpret_cast<const std::uint8_t*>(test::readFile(path()).data()) + 3 * 4096), 2u);
}

TEST_F(LockTest, TheFirstStatementHasTheLockOfTheOpening) {
    File file = open();
    {
        File reader = open(File::Opening::kReading);
        write(file, 2);
        EXPECT_FALSE(file.checkpoint());
        {
            const File::Reading first(reader), nested(reader);
            EXPECT_EQ(number(reader), 1u);
        }
        EXPECT_TRUE(file.checkpoint());
    }
    {
        File writer = open(File::Opening::kWriting);
        EXPECT_EQ(fehlernummerVon([&] { write(file, 3); }), 3260);
        {
            const File::Writing rolledBack(writer);
            writer.appendPage();
        }
        EXPECT_EQ(number(writer), 2u);
    }
    File writer = open(File::Opening::kWriting);
    write(writer, 3);
    EXPECT_EQ(readAnew(), 3u);
    write(writer, 4);
    EXPECT_TRUE(file.checkpoint());
    EXPECT_EQ(readAnew(), 4u);
}

TEST_F(LockTest, WhatChangesNothingIsNoChange) {
    const auto witnessed = witness();
    File other = open(), file = open();
    {
        const File::Writing rolledBack(file);
        storeU32(file.edit(3)->data(), 7);
        storeU32(file.edit(file.appendPage())->data(), 7);
    }
    {
        File::Writing writing(file);
        file.edit(3);
        writing.commit(Durability::kSoon);
    }
    EXPECT_EQ(number(file), 1u);
    EXPECT_EQ(file.pageCount(), 6u);
    EXPECT_FALSE(other.changed());
    EXPECT_FALSE(file.changed());
}

TEST_F(LockTest, ACheckpointKeepsReadersOutForASecondAtMost) {
    const Kind neighbour([&](int ready) {
        const OpenedFile opened = openFile(path(), true);
        FileLocks(opened.fd).tryExclusive(LockPlace::kReaders);
        Kind::bleibe(ready);
    });
    neighbour.lies();
    const auto start = Clock::now();
    EXPECT_EQ(fehlernummerVon([&] { open(); }), 3050);
    EXPECT_GE(Clock::now() - start, 1s);
}

TEST_F(LockTest, TheLastUserTakesAwayWhatWasBesideTheFile) {
    const std::string list = path().substr(0, path().size() - 3) + "ldb";
    (void)!::chown(path().c_str(), 65534, 65534);  // as the superuser; others make what is theirs
    auto first = std::make_unique<File>(path(), Access::kReadWrite);
    EXPECT_EQ(entries(), 2u);
    {
        File second = open();
        EXPECT_EQ(test::readFile(list).size(), 128u);
        EXPECT_EQ(test::readFile(list).substr(32, 6), std::string("Admin\0", 6));
        write(second, 2);
    }
    EXPECT_EQ(entries(), 3u);
    for (const auto& entry : fs::directory_iterator(copy_.folder())) {
        struct stat own {
        }, database{};
        ::stat(entry.path().c_str(), &own);
        ::stat(path().c_str(), &database);
        EXPECT_EQ(own.st_uid, database.st_uid) << entry.path();
        EXPECT_EQ(own.st_gid, database.st_gid) << entry.path();
    }
    { const File reader(path(), Access::kReadOnly); }
    first.reset();
    EXPECT_EQ(entries(), 1u);
    leaveInJournal(3);
    EXPECT_EQ(entries(), 3u);
    EXPECT_EQ(readAnew(), 3u);
    EXPECT_EQ(entries(), 1u);
}

// Both found it when they opened the file; only the first may take it away, or the other's would go with it.
TEST_F(LockTest, AJournalOfSomebodyElseIsSetAsideOnce) {
    const std::string journal = path() + "-journal", garbage(600, '?');
    std::ofstream(journal) << garbage;
    {
        File first = open(), second = open();
        write(first, 2);
        EXPECT_TRUE(second.changed());
        EXPECT_EQ(fehlernummerVon([&] { write(second, 3); }), 3260);
        File third = open();
        write(third, number(third) + 5);
    }
    EXPECT_EQ(readAnew(), 7u);
    EXPECT_TRUE(test::readFile(journal + ".alt").substr(8) == garbage.substr(8));
}

// As somebody without rights: the superuser may write everywhere.
TEST_F(LockTest, AReadOnlyFolderIsReadThroughItsJournal) {
    leaveInJournal(2);
    for (const auto& entry : fs::directory_iterator(copy_.folder()))
        fs::permissions(entry, fs::perms(0444));
    fs::permissions(copy_.folder(), fs::perms(0555));
    EXPECT_EQ(0, ohneRootrechte([&] {
                  File file = open();
                  return (number(file) == 2 ? 0 : 2) +
                         (fehlernummerVon([&] { write(file, 3); }) == 3027 ? 0 : 4) +
                         (fehlernummerVon([&] { open(File::Opening::kWriting); }) == 3027 ? 0 : 8);
              }));
    EXPECT_EQ(entries(), 3u);
    fs::permissions(copy_.folder(), fs::perms(0755));
}

TEST_F(LockTest, WhoReplacesTheFileIsAloneAtFirst) {
    auto file = std::make_unique<File>(path(), Access::kReadWrite);
    EXPECT_EQ(fehlernummerVon([&] { ReplacingLock lock(path()); }), 3050);
    leaveInJournal(5);
    file.reset();
    auto lock = std::make_unique<ReplacingLock>(path());
    file = std::make_unique<File>(path(), Access::kReadWrite);
    EXPECT_EQ(number(*file), 5u);
    EXPECT_EQ(fehlernummerVon([&] { write(*file, 6); }), 3260);
    fs::copy_file(path(), path() + ".neu");
    fs::rename(path() + ".neu", path());
    lock.reset();
    EXPECT_TRUE(file->changed());
    EXPECT_EQ(fehlernummerVon([&] { write(*file, 6); }), 3260);  // that would go into the old one
    File newer = open();
    write(newer, 7);
    file.reset();
    EXPECT_EQ(number(newer), 7u);
}

}  // namespace
}  // namespace wendel::jet
