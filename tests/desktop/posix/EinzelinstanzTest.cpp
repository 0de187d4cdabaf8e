// One running copy: the lock goes with its process, however that ends.

#include "desktop/Einzelinstanz.h"

#include "desktop/posix/Werkzeug.h"

namespace wendel {
namespace {

using Ergebnis = Einzelinstanz::Ergebnis;

TEST(Einzelinstanz, IsHeldUntilTheFirstProcessIsKilled) {
    const TempOrdner temp;
    const std::string sperre = temp / "neu/wendel.lock";
    Kind erste([&](int fertig) {
        Einzelinstanz instanz(sperre);
        const char zeichen = instanz.ergebnis() == Ergebnis::Erste ? '1' : '2';
        [[maybe_unused]] const ssize_t n = ::write(fertig, &zeichen, 1);
        ::pause();
    });
    ASSERT_EQ('1', erste.lies());
    Einzelinstanz zweite(sperre);
    EXPECT_EQ(Ergebnis::Zweite, zweite.ergebnis());
    erste.toete(SIGKILL);
    erste.warte();
    EXPECT_EQ(Ergebnis::Erste, Einzelinstanz(sperre).ergebnis());
    EXPECT_EQ(Ergebnis::NichtPruefbar, Einzelinstanz(temp.datei("datei", "") + "/wendel.lock").ergebnis());
}

TEST(Einzelinstanz, LockFileIsInTheRuntimeFolderElseInTheConfiguration) {
    const TempOrdner temp;
    const Variable config("XDG_CONFIG_HOME", temp / "config"), laufzeit("XDG_RUNTIME_DIR", temp.pfad());
    EXPECT_EQ(temp / "wendel.lock", sperrdateipfad());
    const Variable fehlt("XDG_RUNTIME_DIR", temp / "fehlt");
    EXPECT_EQ(temp / "config/wendel/wendel.lock", sperrdateipfad());
}

}  // namespace
}  // namespace wendel
