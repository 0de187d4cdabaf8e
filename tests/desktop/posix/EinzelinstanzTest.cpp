// One running copy: the lock goes with its process, however that ends.

#include "desktop/Abloesung.h"
#include "desktop/Einzelinstanz.h"
#include "desktop/posix/Werkzeug.h"

namespace wendel {
namespace {

using Ergebnis = Einzelinstanz::Ergebnis;

// Takes the lock and lives until it is killed.
std::function<void(int)> halte(const std::string& sperrdatei) {
    return [sperrdatei](int fertig) {
        Einzelinstanz instanz(sperrdatei);
        const char zeichen = instanz.ergebnis() == Ergebnis::Erste ? '1' : '2';
        [[maybe_unused]] const ssize_t n = ::write(fertig, &zeichen, 1);
        ::pause();
    };
}

TEST(Einzelinstanz, SecondProcessSeesTheFirstUntilThatIsKilled) {
    const TempOrdner temp;
    const std::string sperre = temp / "neu/wendel.lock";
    Kind erste(halte(sperre));
    ASSERT_EQ('1', erste.lies());
    Kind zweite(halte(sperre));
    EXPECT_EQ('2', zweite.lies());
    Einzelinstanz dritte(sperre);
    EXPECT_EQ(Ergebnis::Zweite, dritte.ergebnis());

    erste.toete(SIGKILL);
    erste.warte();
    EXPECT_EQ(Ergebnis::Zweite, dritte.ergebnis());  // asked once, answered once
    EXPECT_EQ(Ergebnis::Erste, Einzelinstanz(sperre).ergebnis());
}

TEST(Einzelinstanz, StartedProgramDoesNotKeepTheLock) {
    const TempOrdner temp;
    const std::string sperre = temp / "wendel.lock";
    const std::string lebt = temp.skript("lebt", "echo $$ >pid; exec sleep 30\n");
    {
        Einzelinstanz instanz(sperre);
        ASSERT_EQ(Ergebnis::Erste, instanz.ergebnis());
        ASSERT_EQ(0, starteAbgeloest({lebt}, temp.pfad()).fehler);
        ASSERT_TRUE(warteBis([&] { return inhaltVon(temp / "pid").ends_with('\n'); }));
    }
    EXPECT_EQ(Ergebnis::Erste, Einzelinstanz(sperre).ergebnis());
    ::kill(std::stoi(inhaltVon(temp / "pid")), SIGKILL);
}

TEST(Einzelinstanz, SaysWhenItCannotTell) {
    const TempOrdner temp;
    temp.datei("datei", "");
    EXPECT_EQ(Ergebnis::NichtPruefbar, Einzelinstanz(temp / "datei/wendel.lock").ergebnis());
}

TEST(Einzelinstanz, LockFileIsInTheRuntimeFolderElseInTheConfiguration) {
    const TempOrdner temp;
    const Variable config("XDG_CONFIG_HOME", temp / "config");
    const struct {
        const char* name;
        std::optional<std::string> laufzeit;
        std::string erwartet;
    } faelle[] = {
        {"runtime folder", temp.pfad(), temp / "wendel.lock"},
        {"none", std::nullopt, temp / "config/wendel/wendel.lock"},
        {"announced but missing", temp / "fehlt", temp / "config/wendel/wendel.lock"},
        {"relative", "run", temp / "config/wendel/wendel.lock"},
    };
    for (const auto& fall : faelle) {
        SCOPED_TRACE(fall.name);
        const Variable laufzeit("XDG_RUNTIME_DIR", fall.laufzeit);
        EXPECT_EQ(fall.erwartet, sperrdateipfad());
    }
}

}  // namespace
}  // namespace wendel
