// Processes that are killed, or run out of disk, at random moments while they append and change broadcasts.
// Whatever they had reported as done is in the file, the statement that ran is there wholly or not at all,
// and the file is sound.

#include <gtest/gtest.h>

#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <iostream>
#include <map>
#include <thread>

#include "jet/proof/Proof.h"
#include "jet/proof/Values.h"
#include "jet/storage/Schema.h"
#include "jet/storage/Table.h"
#include "platform/Fehler.h"
#include "support/Kindprozess.h"

namespace wendel::jet::proof {
namespace {

constexpr unsigned kSeed = 31415;

struct Broadcast {
    std::string title;
    int updated = 0;
    std::size_t details = 0;  // bytes of text
    friend bool operator==(const Broadcast&, const Broadcast&) = default;
};
using Guide = std::map<int, Broadcast>;  // by number

std::string shown(const Guide& guide) {
    std::string text;
    for (const auto& [nr, b] : guide)
        text += std::to_string(nr) + ":" + std::to_string(b.updated) + "/" + std::to_string(b.title.size()) +
                "/" + std::to_string(b.details) + " ";
    return text;
}

void createGuide(const std::string& path) {
    createDatabaseFile(path, Version::kJet4);
    Engine engine;
    const auto database = engine.open(path);
    for (const char* sql :
         {"Create Table Sendungen (Pos Counter Constraint PrimaryKey Primary Key, Nr Long, Titel Text(255), "
          "Aktualisierung Short, Beschreibung Memo)",
          "Create Unique Index Nr On Sendungen (Nr)", "Create Index Titel On Sendungen (Titel, Nr Desc)"})
        database->execute(sql, kFailOnError);
}

Guide readGuide(const std::string& path) {
    Database database(path, Access::kReadOnly);
    const File::Reading reading(database.file());
    Guide guide;
    for (TableScan scan(database.file(), *database.table("Sendungen")); scan.next();) {
        const RowView& row = scan.row();
        Broadcast& broadcast = guide[row.asInteger(1)];
        row.appendText(2, broadcast.title);
        broadcast.updated = row.asInteger(3);
        std::string details;
        if (!row.isNull(4)) row.appendText(4, details);
        broadcast.details = details.size();
    }
    return guide;
}

// A statement, which follows from its number alone: a new broadcast of this number, or a change of those
// whose numbers lie between two others.
struct Step {
    enum Kind { kAppend, kUpdate, kDetails, kDelete } kind = kAppend;
    int first = 0, last = 0;
    std::string title, details;

    explicit Step(int n)
        : title(static_cast<std::size_t>(1 + n * 131 % 200), static_cast<char>('a' + n % 26)),
          details(static_cast<std::size_t>(n * 197 % (n % 3 == 0 ? 9000 : 60)), 'd') {
        if (n % 4 != 0) return;
        kind = n % 20 == 0 ? kDelete : n % 8 == 0 ? kUpdate : kDetails;
        last = n - n % 50;
        first = last - (kind == kDelete ? 400 : kind == kUpdate ? 150 : 6);
        if (kind == kDelete) last -= 200;
    }
};

void apply(int n, Guide& guide) {
    const Step step(n);
    const auto from = guide.lower_bound(step.first), to = guide.upper_bound(step.last);
    if (step.kind == Step::kAppend) guide[n] = {step.title, 0, step.details.size()};
    for (auto b = from; step.kind == Step::kUpdate && b != to; ++b)
        b->second.title = step.title, ++b->second.updated;
    for (auto b = from; step.kind == Step::kDetails && b != to; ++b)
        b->second.details = step.details.size();
    if (step.kind == Step::kDelete) guide.erase(from, to);
}

class Worker {
  public:
    explicit Worker(std::string path) : path_(std::move(path)) {}

    void run(int n) {
        if (n % 30 == 0 || !database_) open();
        const Step step(n);
        const std::string range =
            " Where Nr between " + std::to_string(step.first) + " and " + std::to_string(step.last);
        switch (step.kind) {
            case Step::kAppend: return append(n, step);
            case Step::kUpdate:
                return execute("Update Sendungen Set Titel='" + step.title +
                               "',Aktualisierung=Aktualisierung+1" + range);
            case Step::kDetails:
                return execute("Update Sendungen Set Beschreibung='" + step.details + "'" + range);
            case Step::kDelete: return execute("Delete from Sendungen" + range);
        }
    }

  private:
    void open() {
        added_.reset();
        database_.reset();
        database_ = engine_.open(path_);
    }
    void execute(const std::string& sql) { database_->execute(sql, kFailOnError); }
    void append(int n, const Step& step) {
        if (!added_) added_ = database_->openRecordset("Select * from Sendungen", kDynaset, kAppendOnly);
        added_->addNew();
        added_->setzeFeld("Nr", Variant::lang(n));
        added_->setzeFeld("Titel", Variant::text(step.title));
        added_->setzeFeld("Aktualisierung", Variant::lang(0));
        added_->setzeFeld("Beschreibung", Variant::text(step.details));
        added_->update();
    }

    std::string path_;
    Engine engine_;
    std::unique_ptr<Datenbank> database_;
    std::unique_ptr<Recordset> added_;
};

// What a process of its own does: runs statements, and writes one byte for each: '+' done, '-' refused for
// want of space.
std::function<void(int)> statements(const std::string& path, int first, int count) {
    return [=](int reports) {
        try {
            Worker worker(path);
            for (int n = first; n < first + count; ++n) {
                char report = '+';
                try {
                    worker.run(n);
                } catch (const Fehler& failure) {
                    if (failure.nummer() != 3026) throw;
                    report = '-';
                }
                if (::write(reports, &report, 1) != 1) ::_exit(3);
            }
        } catch (const std::exception& failure) {
            std::cerr << "child: " << failure.what() << std::endl;
            ::_exit(2);
        }
    };
}

// The statements from n on that were reported as done; then the file must show this state or, with one more
// statement, the next one. Leaves the guide as it is found and n behind both.
void expectStateBeforeOrAfter(const std::string& path, const std::string& reports, int& n, Guide& guide,
                              int& halfWay) {
    for (const char report : reports) {
        if (report == '+') apply(n, guide);
        ++n;
    }
    const Guide found = readGuide(path);
    if (found != guide) {
        apply(n, guide);
        EXPECT_EQ(found, guide) << "found    " << shown(found) << "\nexpected " << shown(guide);
        ++halfWay;
        guide = found;
    }
    ++n;
}

TEST(KilledWriters, LeaveWholeStatements) {
    const test::TemporaryCopy copy;
    createGuide(copy.path());
    const int kills = setting("WENDEL_KILLS", 40);
    const unsigned seed = static_cast<unsigned>(setting("WENDEL_SEED", kSeed));
    SCOPED_TRACE("WENDEL_SEED=" + std::to_string(seed));
    Random random(seed);
    Guide guide;
    int next = 1;
    for (Worker worker(copy.path()); next <= 400; ++next) {
        worker.run(next);
        apply(next, guide);
    }
    std::size_t reported = 0;
    int done = 0, lastDone = 0, journals = 0;
    for (; done < kills && !testing::Test::HasFailure(); ++done) {
        Kind child(statements(copy.path(), next, 1000000));
        // Without the wait, many die while they open the file and bring the journal into it.
        std::string reports = oneIn(random, 3) ? "" : std::string(1, child.lies());
        std::this_thread::sleep_for(
            std::chrono::microseconds(below(random, oneIn(random, 3) ? 100000 : 20000)));
        child.toete(SIGKILL);
        EXPECT_TRUE(WIFSIGNALED(child.warte())) << "the child ended by itself";
        reports += child.rest();
        reported += reports.size();
        const std::string journal = copy.path() + "-journal";
        journals += std::filesystem::exists(journal) && std::filesystem::file_size(journal) > 100 ? 1 : 0;
        SCOPED_TRACE("kill " + std::to_string(done));
        expectStateBeforeOrAfter(copy.path(), reports, next, guide, lastDone);
        EXPECT_EQ(newFindings(copy.path()), "");
        Engine()
            .open(copy.path())
            ->execute("Delete from Sendungen Where Nr=-1", kFailOnError);  // no lock is left
    }
    std::cout << done << " kills, " << reported << " statements reported, " << lastDone
              << " times the running one was done, " << journals << " times with a journal to replay\n";
    if (haveMdbtools()) {
        EXPECT_EQ(exported(copy.path(), "Sendungen").size(), guide.size());
    }
}

TEST(FullDisk, LeavesWholeStatements) {
    const test::TemporaryCopy copy;
    createGuide(copy.path());
    Random random(kSeed);
    Guide guide;
    int next = 1;
    std::size_t refused = 0, done = 0;
    int halfWay = 0;
    for (int n = 0; n < setting("WENDEL_FULL", 25) && !testing::Test::HasFailure(); ++n) {
        SCOPED_TRACE("run " + std::to_string(n));
        const std::size_t room = below(random, oneIn(random, 2) ? 60000 : 1500000);
        Kind child([&](int pipe) {
            ::signal(SIGXFSZ, SIG_IGN);  // writing beyond the limit is an error then
            const rlimit limit{room, room};
            ::setrlimit(RLIMIT_FSIZE, &limit);
            statements(copy.path(), next, 60)(pipe);
        });
        const std::string reports = child.rest();
        EXPECT_EQ(child.warte(), 0);
        refused += static_cast<std::size_t>(std::count(reports.begin(), reports.end(), '-'));
        done += static_cast<std::size_t>(std::count(reports.begin(), reports.end(), '+'));
        expectStateBeforeOrAfter(copy.path(), reports, next, guide, halfWay);
        EXPECT_EQ(newFindings(copy.path()), "");
    }
    EXPECT_EQ(halfWay, 0);
    EXPECT_GT(refused, 50u);
    EXPECT_GT(done, 50u);
}

}  // namespace
}  // namespace wendel::jet::proof
