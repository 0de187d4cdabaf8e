// One running copy: the lock goes with its process, however that ends.

#include "desktop/Einzelinstanz.h"

#include "desktop/Abloesung.h"
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
    EXPECT_EQ(Ergebnis::Zweite, zweite.ergebnis());  // asked once, answered once

    // A program that it has started does not keep the lock.
    const std::string lebt = temp.skript("lebt", "echo $$ >pid; exec sleep 30\n");
    {
        Einzelinstanz dritte(sperre);
        ASSERT_EQ(Ergebnis::Erste, dritte.ergebnis());
        ASSERT_EQ(0, starteAbgeloest({lebt}, temp.pfad()).fehler);
        ASSERT_TRUE(warteBis([&] { return inhaltVon(temp / "pid").ends_with('\n'); }));
    }
    EXPECT_EQ(Ergebnis::Erste, Einzelinstanz(sperre).ergebnis());
    ::kill(std::stoi(inhaltVon(temp / "pid")), SIGKILL);
    EXPECT_EQ(Ergebnis::NichtPruefbar, Einzelinstanz(lebt + "/wendel.lock").ergebnis());
}

TEST(Einzelinstanz, LockFileIsInTheRuntimeFolderElseInTheConfiguration) {
    const TempOrdner temp;
    const Variable config("XDG_CONFIG_HOME", temp / "config");
    const std::string ersatz = temp / "config/wendel/wendel.lock";
    const std::pair<std::optional<std::string>, std::string> faelle[] = {{temp.pfad(), temp / "wendel.lock"},
                                                                         {std::nullopt, ersatz},
                                                                         {temp / "fehlt", ersatz},
                                                                         {"run", ersatz}};
    for (const auto& [ordner, erwartet] : faelle) {
        const Variable laufzeit("XDG_RUNTIME_DIR", ordner);
        EXPECT_EQ(erwartet, sperrdateipfad()) << ordner.value_or("unset");
    }
}

}  // namespace
}  // namespace wendel
