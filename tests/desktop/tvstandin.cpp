// A stand-in for a TV application: a small X program that writes down every key and window event, and can
// fail in the ways in which such applications fail.
//
//   tvstandin --log FILE [--title TEXT] [--after SECONDS|never] [--hang SECONDS] [--exit SECONDS]
//             [--maximised 1] [--record FOLDER]
//
//   --title   of its window, "TV" without it
//   --after   opens the window so long after the start; "never" opens none
//   --hang    reads no more events from then on        --exit   ends by itself then
//   --record  the key r starts, and stops, writing FOLDER/aufnahme-N.ts, which grows by 64 KB ten times a
//   second
//
// The key q ends it, as does closing its window. The log gets one line for each event, at once:
//   +KEYSYM/MODIFIERS=CHARACTER   a key goes down ("-": up); without "=" where both are called the same,
//   without
//                                 "/" where no modifier is down: "+T/Shift", "+adiaeresis=ä", "-F4/Alt"
//   map, unmap, focus in, focus out, state normal|minimised|maximised, record FILE, stop FILE, close, end

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <poll.h>
#include <unistd.h>
#include <xkbcommon/xkbcommon.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

namespace {

using Uhr = std::chrono::steady_clock;

class TvStandin {
  public:
    explicit TvStandin(std::map<std::string, std::string> optionen)
        : optionen_(std::move(optionen)), log_(std::fopen(optionen_["--log"].c_str(), "a")) {}

    int laufe() {
        if (display_ == nullptr || log_ == nullptr) return 2;
        while (!ende_) {
            if (fenster_ == 0 && istZeitFuer("--after", true)) oeffne();
            if (istZeitFuer("--exit", false)) break;
            while (!istZeitFuer("--hang", false) && !ende_ && XPending(display_) > 0) {
                XEvent ereignis;
                XNextEvent(display_, &ereignis);
                verarbeite(ereignis);
            }
            if (aufnahme_ != nullptr) {
                std::fwrite(block_.data(), 1, block_.size(), aufnahme_);
                std::fflush(aufnahme_);
            }
            pollfd warte{ConnectionNumber(display_), POLLIN, 0};
            // A recording grows by the clock, not by the number of events.
            const bool taub = aufnahme_ != nullptr || istZeitFuer("--hang", false);
            poll(&warte, taub ? 0U : 1U, taub ? 100 : 20);
        }
        if (aufnahme_ != nullptr) schalteAufnahme();
        melde("end");
        return 0;
    }

  private:
    void melde(const std::string& zeile) {
        std::fprintf(log_, "%s\n", zeile.c_str());
        std::fflush(log_);
    }

    bool istZeitFuer(const char* option, bool ohneAngabe) {
        const std::string& wert = optionen_[option];
        if (wert.empty() || wert == "never") return wert.empty() && ohneAngabe;
        return Uhr::now() - start_ >= std::chrono::duration<double>(std::strtod(wert.c_str(), nullptr));
    }

    Atom atom(const char* name) { return XInternAtom(display_, name, False); }

    void oeffne() {
        const std::string titel = optionen_["--title"].empty() ? "TV" : optionen_["--title"];
        fenster_ =
            XCreateSimpleWindow(display_, DefaultRootWindow(display_), 100, 100, 400, 250, 0, 0, 0x203040);
        XChangeProperty(display_, fenster_, atom("_NET_WM_NAME"), atom("UTF8_STRING"), 8, PropModeReplace,
                        reinterpret_cast<const unsigned char*>(titel.data()), static_cast<int>(titel.size()));
        const Atom maximiert[] = {atom("_NET_WM_STATE_MAXIMIZED_VERT"), atom("_NET_WM_STATE_MAXIMIZED_HORZ")};
        if (!optionen_["--maximised"].empty())
            XChangeProperty(display_, fenster_, atom("_NET_WM_STATE"), XA_ATOM, 32, PropModeReplace,
                            reinterpret_cast<const unsigned char*>(maximiert), 2);
        schliessen_ = atom("WM_DELETE_WINDOW");
        XSetWMProtocols(display_, fenster_, &schliessen_, 1);
        XSelectInput(
            display_, fenster_,
            KeyPressMask | KeyReleaseMask | FocusChangeMask | StructureNotifyMask | PropertyChangeMask);
        XMapWindow(display_, fenster_);
    }

    void verarbeite(XEvent& ereignis) {
        switch (ereignis.type) {
            case KeyPress:
            case KeyRelease: taste(ereignis.xkey); break;
            case MappingNotify: XRefreshKeyboardMapping(&ereignis.xmapping); break;
            case MapNotify: melde("map"); break;
            case UnmapNotify: melde("unmap"); break;
            case FocusIn:
            case FocusOut:
                if (ereignis.xfocus.mode == NotifyNormal || ereignis.xfocus.mode == NotifyWhileGrabbed)
                    melde(ereignis.type == FocusIn ? "focus in" : "focus out");
                break;
            case PropertyNotify: zustand(); break;
            case ClientMessage:
                if (static_cast<Atom>(ereignis.xclient.data.l[0]) != schliessen_) break;
                melde("close");
                ende_ = true;
                break;
            default: break;
        }
    }

    void taste(XKeyEvent& ereignis) {
        KeySym symbol = NoSymbol;
        XLookupString(&ereignis, nullptr, 0, &symbol, nullptr);
        const char* name = XKeysymToString(symbol);
        std::string zeile =
            (ereignis.type == KeyPress ? "+" : "-") + std::string(name != nullptr ? name : "?");
        static const char* const kNamen[] = {"Shift", "Lock", "Ctrl", "Alt", "Num", "Mod3", "Super", "AltGr"};
        for (unsigned i = 0; i < 8; ++i)
            if ((ereignis.state >> i & 1U) != 0) zeile += std::string("/") + kNamen[i];
        char zeichen[8] = "";
        xkb_keysym_to_utf8(static_cast<xkb_keysym_t>(symbol), zeichen, sizeof zeichen);
        if (static_cast<unsigned char>(zeichen[0]) > ' ' && zeichen != std::string(name))
            zeile += "=" + std::string(zeichen);
        melde(zeile);
        if (ereignis.type != KeyPress || ereignis.state != 0) return;
        if (symbol == XStringToKeysym("q")) ende_ = true;
        if (symbol == XStringToKeysym("r") && !optionen_["--record"].empty()) schalteAufnahme();
    }

    std::vector<unsigned long> werte(const char* name) {
        Atom typ = 0;
        int format = 0;
        unsigned long anzahl = 0;
        unsigned long rest = 0;
        unsigned char* daten = nullptr;
        XGetWindowProperty(display_, fenster_, atom(name), 0, 64, False, AnyPropertyType, &typ, &format,
                           &anzahl, &rest, &daten);
        const auto* zahlen = reinterpret_cast<const unsigned long*>(daten);
        std::vector<unsigned long> liste(zahlen, zahlen + (format == 32 ? anzahl : 0));
        if (daten != nullptr) XFree(daten);
        return liste;
    }

    void zustand() {
        const std::vector<unsigned long> gezeigt = werte("WM_STATE");
        if (gezeigt.empty()) return;
        std::string neu = gezeigt[0] == IconicState ? "minimised" : "normal";
        for (const unsigned long merkmal : werte("_NET_WM_STATE"))
            if (merkmal == atom("_NET_WM_STATE_MAXIMIZED_VERT") && neu == "normal") neu = "maximised";
        if (neu != zustand_) melde("state " + neu);
        zustand_ = neu;
    }

    void schalteAufnahme() {
        if (aufnahme_ != nullptr) {
            std::fclose(aufnahme_);
            aufnahme_ = nullptr;
            return melde("stop " + datei_);
        }
        datei_ = optionen_["--record"] + "/aufnahme-" + std::to_string(++aufnahmen_) + ".ts";
        aufnahme_ = std::fopen(datei_.c_str(), "w");
        melde((aufnahme_ != nullptr ? "record " : "cannot write ") + datei_);
    }

    std::map<std::string, std::string> optionen_;
    std::FILE* log_;
    Display* display_ = XOpenDisplay(nullptr);
    Uhr::time_point start_ = Uhr::now();
    Window fenster_ = 0;
    Atom schliessen_ = 0;
    std::string zustand_;
    std::FILE* aufnahme_ = nullptr;
    std::string datei_;
    int aufnahmen_ = 0;
    std::vector<char> block_ = std::vector<char>(65536, 'G');
    bool ende_ = false;
};

}  // namespace

int main(int argc, char** argv) {
    std::map<std::string, std::string> optionen;
    for (int i = 1; i + 1 < argc; i += 2)
        optionen[argv[i]] = argv[i + 1];
    return TvStandin(optionen).laufe();
}
