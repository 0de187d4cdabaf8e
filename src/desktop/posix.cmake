# Adapters that need the system's calls and nothing else: the command-line programs link them without Qt.
wendel_library(wendel_posix
  SOURCES
    Abloesung.cpp
    Autostarteintrag.cpp
    AufwachMelder.cpp
    Busklopfen.cpp
    Einzelinstanz.cpp
    LinuxDateistarter.cpp
    LinuxDateisystem.cpp
    LinuxKlang.cpp
    LinuxProzesse.cpp
    LinuxRechner.cpp
    LinuxUhr.cpp
    Netzschnittstellen.cpp
    Pfade.cpp
    Programmordner.cpp
    Programmzeile.cpp
    Registrierungsdatei.cpp
    Weckalarm.cpp
  LINKS wendel_platform)

# Asks about the display without the toolkit.
wendel_library(wendel_anzeige SOURCES Anzeigepruefung.cpp Steuerbarkeit.cpp X11Server.cpp LINKS wendel_interface xcb)
