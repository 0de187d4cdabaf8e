// Processes that are killed, or run out of disk, at random moments while they maintain marks and append
// broadcasts. Whatever they had reported as done is in the file, the statement that ran is there wholly or
// not at all, and the file is sound.

#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <iostream>
#include <map>
#include <thread>

#include "jet/proof/Proof.h"
#include "jet/proof/Values.h"
#include "jet/storage/Schema.h"
#include "jet/storage/Table.h"
#include "platform/Fehler.h"

namespace wendel::jet::proof {
namespace {

constexpr unsigned kSeed = 31415;

// What is in the guide, as far as the statements below change it. Marks name the number of their broadcast, 0
// when detached, -1 when the broadcast has gone since.
struct Guide {
    struct Broadcast {
        std::string title;
        int updated = 0;
        bool favourite = false;
        std::size_t details = 0;  // bytes of text, 0 without
        friend bool operator==(const Broadcast&, const Broadcast&) = default;
    };
    std::map<int, Broadcast> broadcasts;
    std::map<int, int> marks;
    friend bool operator==(const Guide&, const Guide&) = default;

    std::string shown() const {
        std::string text;
        for (const auto& [nr, b] : broadcasts)
            text += std::to_string(nr) + ":" + std::to_string(b.updated) + (b.favourite ? "f" : "") + "/" +
                    std::to_string(b.title.size()) + "/" + std::to_string(b.details) + " ";
        for (const auto& [id, nr] : marks)
            text += "m" + std::to_string(id) + ">" + std::to_string(nr) + " ";
        return text;
    }
};

void createGuide(const std::string& path) {
    createDatabaseFile(path, Version::kJet4);
    Engine engine;
    const auto database = engine.open(path);
    for (const char* sql :
         {"Create Table Sendungen (Pos Counter Constraint PrimaryKey Primary Key, Nr Long, Titel Text(255), "
          "Aktualisierung Short, KzInFavoritenListe YesNo)",
          "Create Unique Index Nr On Sendungen (Nr)", "Create Index Titel On Sendungen (Titel, Nr Desc)",
          "Create Table SendungenDetails (Pos Long Constraint PrimaryKey Primary Key, Beschreibung Memo)",
          "Create Table Markierungen (ID Counter Constraint PrimaryKey Primary Key, Nr Long, Pos Long, "
          "Sendung "
          "Text(50))",
          "Create Index Pos On Markierungen (Pos)"})
        database->execute(sql, kFailOnError);
}

Guide readGuide(const std::string& path) {
    Database database(path, Access::kReadOnly);
    const File::Reading reading(database.file());
    Guide guide;
    std::map<int, int> numbers{{0, 0}};
    for (TableScan scan(database.file(), *database.table("Sendungen")); scan.next();) {
        const RowView& row = scan.row();
        Guide::Broadcast& broadcast = guide.broadcasts[row.asInteger(1)];
        numbers[row.asInteger(0)] = row.asInteger(1);
        row.appendText(2, broadcast.title);
        broadcast.updated = row.asInteger(3);
        broadcast.favourite = row.asBool(4);
    }
    for (TableScan scan(database.file(), *database.table("SendungenDetails")); scan.next();) {
        std::string text;
        scan.row().appendText(1, text);
        const auto number = numbers.find(scan.row().asInteger(0));
        if (number != numbers.end()) guide.broadcasts[number->second].details = text.size();
    }
    for (TableScan scan(database.file(), *database.table("Markierungen")); scan.next();) {
        const auto number = numbers.find(scan.row().asInteger(2));
        guide.marks[scan.row().asInteger(1)] = number == numbers.end() ? -1 : number->second;
    }
    return guide;
}

// A row of statements that follows from the seed alone. Two copies go the same way: one runs the statements,
// the other knows what they do.
class Script {
  public:
    explicit Script(unsigned seed) : random_(seed) {}

    struct Step {
        enum Kind {
            kAppend,
            kDetails,
            kUpdate,
            kDelete,
            kMark,
            kDetach,
            kFlag,
            kUnflag,
            kUnmark,
            kReopen
        } kind;
        int nr = 0, last = 0;
        std::string text;
    };

    Step next(const Guide& guide) {
        Step step{.kind = static_cast<Step::Kind>(below(random_, 10)), .text = {}};
        const bool many = guide.broadcasts.size() > 300;
        if (many && step.kind == Step::kAppend) step.kind = Step::kDelete;
        if (guide.broadcasts.size() < 20 || (!many && oneIn(random_, 2))) step.kind = Step::kAppend;
        if (step.kind == Step::kReopen && !oneIn(random_, 3)) step.kind = Step::kUpdate;
        ++serial_;
        step.text.assign(below(random_, step.kind == Step::kDetails ? 9000 : 200) + 1,
                         static_cast<char>('a' + serial_ % 26));
        if (step.kind == Step::kAppend || step.kind == Step::kMark) step.last = serial_;
        if (guide.broadcasts.empty() || step.kind == Step::kAppend) return step;
        const auto first = std::next(guide.broadcasts.begin(),
                                     static_cast<std::ptrdiff_t>(below(random_, guide.broadcasts.size())));
        step.nr = first->first;
        if (step.kind == Step::kUpdate || step.kind == Step::kDelete || step.kind == Step::kFlag)
            step.last = step.nr + static_cast<int>(below(random_, 150));
        if (step.kind == Step::kDetails && first->second.details != 0) {
            step.kind = Step::kUpdate;
            step.last = step.nr + 900;
            step.text.resize(std::min<std::size_t>(step.text.size(), 200));
        }
        return step;
    }

  private:
    Random random_;
    int serial_ = 0;
};

void apply(const Script::Step& step, Guide& guide) {
    using Kind = Script::Step;
    auto& broadcasts = guide.broadcasts;
    const auto from = broadcasts.lower_bound(step.nr), to = broadcasts.upper_bound(step.last);
    switch (step.kind) {
        case Kind::kAppend: broadcasts[step.last] = {step.text}; break;
        case Kind::kDetails: broadcasts[step.nr].details = step.text.size(); break;
        case Kind::kUpdate:
            for (auto b = from; b != to; ++b)
                b->second.title = step.text, ++b->second.updated;
            break;
        case Kind::kDelete:
            for (auto& [id, nr] : guide.marks)
                if (nr >= step.nr && nr <= step.last && nr > 0) nr = -1;
            broadcasts.erase(from, to);
            break;
        case Kind::kMark: guide.marks[step.last] = step.nr; break;
        case Kind::kDetach:
            for (auto& [id, nr] : guide.marks)
                if (nr == -1) nr = 0;
            break;
        case Kind::kFlag:
            for (auto b = from; b != to; ++b)
                b->second.favourite = true;
            break;
        case Kind::kUnflag:
            for (auto& [nr, b] : broadcasts)
                b.favourite = b.favourite && nr == step.nr;
            break;
        case Kind::kUnmark:
            std::erase_if(guide.marks, [](const auto& mark) { return mark.second == 0; });
            break;
        case Kind::kReopen: break;
    }
}

class Worker {
  public:
    explicit Worker(std::string path) : path_(std::move(path)) { open(); }

    void run(const Script::Step& step) {
        using Kind = Script::Step;
        const std::string text = "'" + step.text + "'";
        const std::string range =
            " Where Nr between " + std::to_string(step.nr) + " and " + std::to_string(step.last);
        switch (step.kind) {
            case Kind::kAppend:
                return append("Sendungen", {{"Nr", Variant::lang(step.last)},
                                            {"Titel", Variant::text(step.text)},
                                            {"Aktualisierung", Variant::lang(0)}});
            case Kind::kDetails:
                return append("SendungenDetails", {{"Pos", Variant::lang(pos(step.nr))},
                                                   {"Beschreibung", Variant::text(step.text)}});
            case Kind::kUpdate:
                return execute("Update Sendungen Set Titel=" + text + ",Aktualisierung=Aktualisierung+1" +
                               range);
            case Kind::kDelete: return execute("Delete from Sendungen" + range);
            case Kind::kMark:
                return execute(
                    "Insert Into Markierungen (Nr,Pos,Sendung) Values (" + std::to_string(step.last) + "," +
                    std::to_string(step.nr == 0 ? 0 : pos(step.nr)) + ",'" + step.text.substr(0, 50) + "')");
            case Kind::kDetach:
                return execute(
                    "Update Sendungen right join Markierungen on Sendungen.Pos = Markierungen.Pos Set "
                    "Markierungen.Pos = 0 Where Sendungen.Pos Is Null");
            case Kind::kFlag:
                return execute(
                    "Update Sendungen Set KzInFavoritenListe=true Where KzInFavoritenListe=0 and Pos in (" +
                    positions(range) + ");");
            case Kind::kUnflag:
                return execute(
                    "Update Sendungen Set KzInFavoritenListe=0 Where KzInFavoritenListe=true and not Pos in "
                    "(" +
                    std::to_string(step.nr == 0 ? 0 : pos(step.nr)) + ");");
            case Kind::kUnmark: return execute("Delete from Markierungen Where Pos=0");
            case Kind::kReopen: open();
        }
    }

  private:
    void open() {
        recordsets_.clear();
        database_.reset();
        database_ = engine_.open(path_);
    }
    void execute(const std::string& sql) { database_->execute(sql, kFailOnError); }
    int pos(int nr) {
        return single(*database_, "Select Pos from Sendungen Where Nr=" + std::to_string(nr)).alsLong();
    }
    std::string positions(const std::string& range) {
        std::string list = "-1";
        const auto rs =
            database_->openRecordset("Select Pos from Sendungen" + range, kSnapshot, kForwardOnly);
        for (; !rs->eof(); rs->moveNext())
            list += "," + rs->feld(0).alsText();
        return list;
    }
    void append(const std::string& table, const std::vector<std::pair<std::string, Variant>>& fields) {
        std::unique_ptr<Recordset>& rs = recordsets_[table];
        if (!rs) rs = database_->openRecordset("Select * from " + table, kDynaset, kAppendOnly);
        rs->addNew();
        for (const auto& [name, value] : fields)
            rs->setzeFeld(name, value);
        rs->update();
    }

    std::string path_;
    Engine engine_;
    std::unique_ptr<Datenbank> database_;
    std::map<std::string, std::unique_ptr<Recordset>> recordsets_;
};

// Runs the script in a process of its own; one byte for each statement: '+' done, '-' refused for want of
// space.
class Child {
  public:
    template <class Before>
    Child(const std::string& path, Script script, Guide guide, int statements, const Before& before) {
        int ends[2];
        if (::pipe(ends) != 0 || (pid_ = ::fork()) < 0) throw std::runtime_error("no child");
        if (pid_ != 0) {
            ::close(ends[1]);
            reports_ = ends[0];
            return;
        }
        before();
        try {
            Worker worker(path);
            for (int n = 0; n < statements; ++n) {
                const Script::Step step = script.next(guide);
                char report = '+';
                try {
                    worker.run(step);
                    apply(step, guide);
                } catch (const Fehler& failure) {
                    if (failure.nummer() != 3026) throw;
                    report = '-';
                }
                if (::write(ends[1], &report, 1) != 1) ::_exit(3);
            }
        } catch (const std::exception& failure) {
            std::cerr << "child: " << failure.what() << std::endl;
            ::_exit(2);
        }
        ::_exit(0);
    }
    ~Child() { ::close(reports_); }

    void kill() const { ::kill(pid_, SIGKILL); }
    int wait() const {
        int status = 0;
        ::waitpid(pid_, &status, 0);
        return status;
    }
    // What has been reported; waits for the first byte alone, or until the pipe is closed.
    std::string reports(bool firstOnly) const {
        std::string all;
        char buffer[4096];
        for (ssize_t n; (n = ::read(reports_, buffer, firstOnly ? 1 : sizeof buffer)) > 0;) {
            all.append(buffer, static_cast<std::size_t>(n));
            if (firstOnly) break;
        }
        return all;
    }

  private:
    pid_t pid_ = 0;
    int reports_ = -1;
};

// Goes the child's way as far as it reported; then the file must show this state or, with one more statement,
// the next one. The script and guide are left at the state found.
void expectStateBeforeOrAfter(const std::string& path, const std::string& reports, Script& script,
                              Guide& guide, int& halfWay) {
    for (const char report : reports) {
        const Script::Step step = script.next(guide);
        if (report == '+') apply(step, guide);
    }
    const Guide found = readGuide(path);
    if (found == guide) return;
    apply(script.next(guide), guide);
    EXPECT_EQ(found, guide) << "found    " << found.shown() << "\nexpected " << guide.shown();
    ++halfWay;
    guide = found;
}

TEST(KilledWriters, LeaveWholeStatements) {
    const test::TemporaryCopy copy;
    createGuide(copy.path());
    const int kills = setting("WENDEL_KILLS", 40);
    const unsigned seed = static_cast<unsigned>(setting("WENDEL_SEED", kSeed));
    SCOPED_TRACE("WENDEL_SEED=" + std::to_string(seed));
    Random random(seed);
    Script script(seed);
    Guide guide;
    std::size_t statements = 0;
    int done = 0, lastDone = 0, journals = 0;
    for (; done < kills && !testing::Test::HasFailure(); ++done) {
        const Child child(copy.path(), script, guide, 1000000, [] {});
        // Without the wait, many die while they open the file and bring the journal into it.
        std::string reports = oneIn(random, 3) ? "" : child.reports(true);
        std::this_thread::sleep_for(
            std::chrono::microseconds(below(random, oneIn(random, 3) ? 100000 : 20000)));
        child.kill();
        EXPECT_TRUE(WIFSIGNALED(child.wait())) << "the child ended by itself";
        reports += child.reports(false);
        statements += reports.size();
        const std::string journal = copy.path() + "-journal";
        journals += std::filesystem::exists(journal) && std::filesystem::file_size(journal) > 100 ? 1 : 0;
        SCOPED_TRACE("kill " + std::to_string(done));
        expectStateBeforeOrAfter(copy.path(), reports, script, guide, lastDone);
        EXPECT_EQ(newFindings(copy.path()), "");
        Engine()
            .open(copy.path())
            ->execute("Delete from Markierungen Where Nr=-1", kFailOnError);  // no lock is left
    }
    std::cout << done << " kills, " << statements << " statements reported, " << lastDone
              << " times the running one was done, " << journals << " times with a journal to replay\n";
    if (haveMdbtools()) {
        EXPECT_EQ(exported(copy.path(), "Sendungen").size(), guide.broadcasts.size());
    }
}

TEST(FullDisk, LeavesWholeStatements) {
    const test::TemporaryCopy copy;
    createGuide(copy.path());
    Random random(kSeed);
    Script script(kSeed);
    Guide guide;
    std::size_t refused = 0, done = 0;
    int halfWay = 0;
    for (int n = 0; n < setting("WENDEL_FULL", 25) && !testing::Test::HasFailure(); ++n) {
        SCOPED_TRACE("run " + std::to_string(n));
        const std::size_t room = below(random, oneIn(random, 2) ? 60000 : 1500000);
        const Child child(copy.path(), script, guide, 60, [room] {
            std::signal(SIGXFSZ, SIG_IGN);  // writing beyond the limit is an error then
            const rlimit limit{room, room};
            ::setrlimit(RLIMIT_FSIZE, &limit);
        });
        const std::string reports = child.reports(false);
        EXPECT_EQ(child.wait(), 0);
        refused += static_cast<std::size_t>(std::count(reports.begin(), reports.end(), '-'));
        done += static_cast<std::size_t>(std::count(reports.begin(), reports.end(), '+'));
        expectStateBeforeOrAfter(copy.path(), reports, script, guide, halfWay);
        EXPECT_EQ(newFindings(copy.path()), "");
    }
    EXPECT_EQ(halfWay, 0);
    EXPECT_GT(refused, 50u);
    EXPECT_GT(done, 50u);
}

}  // namespace
}  // namespace wendel::jet::proof
