#include "desktop/X11Tastatur.h"

#include <X11/XKBlib.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>
#include <xkbcommon/xkbcommon.h>

#include <algorithm>
#include <chrono>
#include <map>
#include <memory>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

namespace wendel {
namespace {

using std::chrono::milliseconds;

// Programs learn of a changed keyboard by a message and then ask the server what it looks like: until they
// have asked, and until they have seen the last stroke, it has to stay as it is.
constexpr milliseconds kNachBelegen(50);
constexpr milliseconds kVorRaeumen(250);
// Toolkits take a stroke that follows its own release within 2 ms for the repetition of a held key.
constexpr milliseconds kZwischenGleichen(3);
constexpr milliseconds kHoechstdauer(5000);

constexpr KeySym kTasten[] = {
    NoSymbol,       XK_Shift_L, XK_Control_L, XK_Alt_L,  XK_BackSpace, XK_Pause, XK_Caps_Lock,
    XK_Delete,      XK_Down,    XK_End,       XK_Return, XK_Escape,    XK_Help,  XK_Home,
    XK_Insert,      XK_Left,    XK_Num_Lock,  XK_Next,   XK_Prior,     XK_Print, XK_Right,
    XK_Scroll_Lock, XK_Tab,     XK_Up,        XK_F1,
};
static_assert(std::size(kTasten) == static_cast<std::size_t>(Taste::F1) + 1);
static_assert(XK_F16 - XK_F1 == 15);

KeySym keysym(const Tastenereignis& ereignis) {
    if (ereignis.taste == Taste::Zeichen) return xkb_utf32_to_keysym(ereignis.zeichen);
    const auto nummer = static_cast<std::size_t>(ereignis.taste);
    return nummer < std::size(kTasten) ? kTasten[nummer]
                                       : XK_F1 + (nummer - static_cast<std::size_t>(Taste::F1));
}

// Layouts name a character in one of several ways. The keys of the number block don't count: what they
// type depends on Num Lock.
bool tippt(KeySym auf, KeySym gesucht) {
    if (auf == gesucht) return true;
    if (auf >= XK_KP_Space && auf <= XK_KP_Equal) return false;
    const std::uint32_t zeichen = xkb_keysym_to_utf32(static_cast<xkb_keysym_t>(gesucht));
    return zeichen >= ' ' && xkb_keysym_to_utf32(static_cast<xkb_keysym_t>(auf)) == zeichen;
}

bool enthaelt(std::span<const Tastenereignis> ereignisse, Taste taste) {
    return std::any_of(ereignisse.begin(), ereignisse.end(),
                       [&](const Tastenereignis& ereignis) { return ereignis.taste == taste; });
}

struct DisplaySchluss {
    void operator()(Display* display) const { XCloseDisplay(display); }
};
struct XkbSchluss {
    void operator()(XkbDescPtr xkb) const { XkbFreeKeyboard(xkb, XkbAllComponentsMask, True); }
};

struct Anschlag {
    KeyCode taste = 0;
    unsigned modifikatoren = 0;  // held while it is struck
};

struct GedrueckteTaste {
    Tastenereignis ereignis;
    Anschlag anschlag;
};

class Tastatur {
  public:
    explicit Tastatur(Display* display) : display_(display) {
        haltGelassenes();
        // The first event makes the keyboard of the extension the present one, which may have a layout of its
        // own: only now the server's answers are about the keys that get struck.
        xkb_.reset(XkbGetMap(display_, XkbAllClientInfoMask, XkbUseCoreKbd));
        if (xkb_) frei_ = freieTasten();
        XkbStateRec zustand{};
        XkbGetState(display_, XkbUseCoreKbd, &zustand);
        gruppe_ = zustand.group;
        num_ = XkbKeysymToModifiers(display_, XK_Num_Lock);
        altGr_ = XkbKeysymToModifiers(display_, XK_ISO_Level3_Shift);
        sperren_ = zustand.locked_mods & ~num_;
        XkbLatchModifiers(display_, XkbUseCoreKbd, zustand.latched_mods, 0);
        entsperre();
    }
    ~Tastatur() {
        while (!gedrueckt_.empty())
            lasseLos(gedrueckt_.back().ereignis);
        setzeErsatz({});
        XkbLockModifiers(display_, XkbUseCoreKbd, 0xffU & ~num_, sperren_);
        XSync(display_, False);
    }
    Tastatur(const Tastatur&) = delete;
    Tastatur& operator=(const Tastatur&) = delete;

    bool tippe(std::span<const Tastenereignis> ereignisse) {
        meideBildschirmwechsel_ = enthaelt(ereignisse, Taste::Strg) && enthaelt(ereignisse, Taste::Alt);
        if (!xkb_ || !belege(ereignisse)) return false;
        for (std::size_t i = 0; i < ereignisse.size(); ++i) {
            if (std::chrono::steady_clock::now() > ende_) return false;
            if (!ereignisse[i].gedrueckt) {
                lasseLos(ereignisse[i]);
            } else {
                if (!anschlag(keysym(ereignisse[i])) && !belege(ereignisse.subspan(i))) return false;
                druecke(ereignisse[i], *anschlag(keysym(ereignisse[i])));
            }
        }
        return true;
    }

  private:
    void haltGelassenes() {
        char unten[32];
        XQueryKeymap(display_, unten);
        // In any case an event, even when it tells nobody anything.
        sende(XKeysymToKeycode(display_, XK_Shift_L), false);
        for (unsigned taste = 8; taste < 256; ++taste)
            if ((static_cast<unsigned char>(unten[taste / 8]) >> taste % 8 & 1U) != 0)
                sende(static_cast<KeyCode>(taste), false);
        XSync(display_, False);
    }

    void entsperre() { XkbLockModifiers(display_, XkbUseCoreKbd, 0xffU & ~num_, 0); }

    void sende(KeyCode taste, bool gedrueckt) {
        if (gedrueckt && taste == zuletzt_) {
            XSync(display_, False);
            std::this_thread::sleep_for(kZwischenGleichen);
        }
        if (!gedrueckt) zuletzt_ = taste;
        XTestFakeKeyEvent(display_, taste, gedrueckt ? True : False, CurrentTime);
    }

    std::optional<Anschlag> sucheImLayout(KeySym gesucht) const {
        if (meideBildschirmwechsel_ && gesucht >= XK_F1 && gesucht <= XK_F12) return std::nullopt;
        for (const unsigned modifikatoren : {0U, unsigned{ShiftMask}, altGr_, ShiftMask | altGr_}) {
            const unsigned zustand = XkbBuildCoreState(modifikatoren | num_, gruppe_);
            for (unsigned taste = xkb_->min_key_code; taste <= xkb_->max_key_code; ++taste) {
                unsigned verbraucht = 0;
                KeySym auf = NoSymbol;
                const auto kennung = static_cast<KeyCode>(taste);
                if (XkbTranslateKeyCode(xkb_.get(), kennung, zustand, &verbraucht, &auf) != False &&
                    tippt(auf, gesucht))
                    return Anschlag{kennung, modifikatoren};
            }
        }
        return std::nullopt;
    }

    std::optional<Anschlag> imLayout(KeySym gesucht) {
        const auto [eintrag, neu] = layout_.try_emplace(gesucht);
        if (neu && gesucht != NoSymbol) eintrag->second = sucheImLayout(gesucht);
        return eintrag->second;
    }

    // Nothing for what has no key at present.
    std::optional<Anschlag> anschlag(KeySym gesucht) {
        const auto ersatz = ersatz_.find(gesucht);
        return ersatz != ersatz_.end() ? Anschlag{ersatz->second, 0} : imLayout(gesucht);
    }

    std::vector<KeyCode> freieTasten() const {
        std::vector<KeyCode> frei;
        for (unsigned taste = xkb_->min_key_code; taste <= xkb_->max_key_code; ++taste)
            if (XkbKeyNumGroups(xkb_.get(), taste) == 0 && xkb_->map->modmap[taste] == 0)
                frei.push_back(static_cast<KeyCode>(taste));
        return frei;
    }

    // Puts what the coming events need and the layout lacks on the unused keys, as much as they hold. False
    // when there is something for which they are of no use.
    bool belege(std::span<const Tastenereignis> kommende) {
        std::vector<KeySym> fehlende;
        for (const Tastenereignis& ereignis : kommende) {
            const KeySym gesucht = keysym(ereignis);
            if (!ereignis.gedrueckt || imLayout(gesucht)) continue;
            if (gesucht == NoSymbol || frei_.empty()) return false;
            if (std::find(fehlende.begin(), fehlende.end(), gesucht) != fehlende.end()) continue;
            if (fehlende.size() == frei_.size()) break;
            fehlende.push_back(gesucht);
        }
        setzeErsatz(fehlende);
        return true;
    }

    // All keys in one change: window managers need long to digest each.
    void setzeErsatz(const std::vector<KeySym>& zeichen) {
        if (ersatz_.empty() && zeichen.empty()) return;
        XSync(display_, False);
        if (!ersatz_.empty()) std::this_thread::sleep_for(kVorRaeumen);
        for (const auto& [altes, taste] : ersatz_)
            beschrifte(taste, NoSymbol);
        ersatz_.clear();
        for (std::size_t i = 0; i < zeichen.size(); ++i) {
            ersatz_[zeichen[i]] = frei_[i];
            beschrifte(frei_[i], zeichen[i]);
        }
        XkbMapChangesRec aenderung{};
        aenderung.changed = XkbKeySymsMask;
        aenderung.first_key_sym = frei_.front();
        aenderung.num_key_syms = static_cast<unsigned char>(frei_.back() - frei_.front() + 1);
        XkbChangeMap(display_, xkb_.get(), &aenderung);
        XSync(display_, False);
        if (!ersatz_.empty()) std::this_thread::sleep_for(kNachBelegen);
    }

    void beschrifte(KeyCode taste, KeySym zeichen) {
        int art[] = {XkbTwoLevelIndex, 0, 0, 0};
        const int gruppen = zeichen == NoSymbol ? 0 : 1;
        if (XkbChangeTypesOfKey(xkb_.get(), taste, gruppen, XkbGroup1Mask, art, nullptr) != Success) return;
        if (gruppen == 0) return;
        KeySym klein = zeichen;
        KeySym gross = zeichen;
        XConvertCase(zeichen, &klein, &gross);
        KeySym* ebenen = XkbKeySymsPtr(xkb_.get(), taste);
        ebenen[0] = zeichen;
        ebenen[1] = zeichen == klein ? gross : zeichen;
    }

    void modifikatoren(unsigned welche, bool gedrueckt) {
        if ((welche & ShiftMask) != 0) sende(XKeysymToKeycode(display_, XK_Shift_L), gedrueckt);
        if ((welche & altGr_) != 0) sende(XKeysymToKeycode(display_, XK_ISO_Level3_Shift), gedrueckt);
    }

    void druecke(const Tastenereignis& ereignis, Anschlag anschlag) {
        const bool umschalt = std::any_of(gedrueckt_.begin(), gedrueckt_.end(), [](const auto& gedrueckte) {
            return gedrueckte.ereignis.taste == Taste::Umschalt;
        });
        if (umschalt) anschlag.modifikatoren &= ~unsigned{ShiftMask};
        modifikatoren(anschlag.modifikatoren, true);
        sende(anschlag.taste, true);
        gedrueckt_.push_back({ereignis, anschlag});
    }

    void lasseLos(const Tastenereignis& ereignis) {
        const auto letzte =
            std::find_if(gedrueckt_.rbegin(), gedrueckt_.rend(), [&](const GedrueckteTaste& eine) {
                return eine.ereignis.taste == ereignis.taste && eine.ereignis.zeichen == ereignis.zeichen;
            });
        if (letzte == gedrueckt_.rend()) return;
        const Anschlag anschlag = letzte->anschlag;
        gedrueckt_.erase(std::next(letzte).base());
        sende(anschlag.taste, false);
        modifikatoren(anschlag.modifikatoren, false);
        if (ereignis.taste != Taste::Feststell) return;
        // The key does what it is for, but for what comes after the string.
        sperren_ ^= LockMask;
        entsperre();
    }

    Display* display_;
    std::unique_ptr<XkbDescRec, XkbSchluss> xkb_;
    unsigned gruppe_ = 0;
    unsigned num_ = 0;
    unsigned altGr_ = 0;
    unsigned sperren_ = 0;  // what is on again afterwards
    KeyCode zuletzt_ = 0;   // released last
    // With Ctrl and Alt the layout's F keys don't reach programs: they switch to another virtual screen.
    bool meideBildschirmwechsel_ = false;
    std::map<KeySym, std::optional<Anschlag>> layout_;
    std::vector<KeyCode> frei_;         // the unused keys
    std::map<KeySym, KeyCode> ersatz_;  // what they type at present
    std::vector<GedrueckteTaste> gedrueckt_;
    std::chrono::steady_clock::time_point ende_ = std::chrono::steady_clock::now() + kHoechstdauer;
};

}  // namespace

bool tippe(std::span<const Tastenereignis> ereignisse) {
    const std::unique_ptr<Display, DisplaySchluss> display(XOpenDisplay(nullptr));
    int unwichtig = 0;
    if (!display ||
        XTestQueryExtension(display.get(), &unwichtig, &unwichtig, &unwichtig, &unwichtig) == False)
        return false;
    return Tastatur(display.get()).tippe(ereignisse);
}

}  // namespace wendel
