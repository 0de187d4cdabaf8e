#include "jet/storage/TextKeys.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>
#include <vector>

#include "jet/storage/Bytes.h"
#include "jet/storage/TextCoding.h"
#include "platform/Text.h"

namespace wendel::jet {
namespace {

constexpr unsigned kMaxUnits = 255;

enum class Kind : std::uint8_t { kPlain, kSpecial, kMark, kKana };

struct Code {
    std::uint16_t inlineBytes = 0;  // 0: none
    std::uint16_t accent = 0;       // 0: none
    std::uint8_t extra = 0;         // special code or kana mark
    Kind kind = Kind::kPlain;
};

constexpr Kind S = Kind::kSpecial, M = Kind::kMark, K = Kind::kKana;
constexpr Code kCodes[] = {
#include "jet/storage/TextKeyCodes.inc"
};

// Stretches of characters whose codes lie one after the other in kCodes.
struct Run {
    std::uint16_t first, last, position;
};
constexpr Run kRuns[] = {{0x0000, 0x024F, 0},    {0x02B0, 0x02EF, 592},  {0x0300, 0x0345, 656},
                         {0x0370, 0x052F, 726},  {0x2000, 0x206F, 1174}, {0x20A0, 0x20CF, 1286},
                         {0x2100, 0x214F, 1334}, {0x3041, 0x30FE, 1414}};
static_assert(std::size(kCodes) == 1414 + (0x30FE - 0x3041 + 1));

constexpr std::uint16_t kSurrogateAccent = 0x3F;

// The codes of surrogates follow from their number: the halves of a pair are keyed each for itself.
Code surrogateCode(std::uint16_t unit) {
    unsigned shift = 10238;
    if (unit >= 0xDC00) {
        const unsigned z = unit - 0xDC00u;
        shift = z < 8 ? 9992 : z < 262 ? 9990 : z < 516 ? 9988 : z < 770 ? 9986 : 9984;
    }
    return {static_cast<std::uint16_t>(unit - shift), kSurrogateAccent, 0, Kind::kPlain};
}

bool isSurrogate(std::uint16_t unit) { return unit >= 0xD800 && unit < 0xE000; }

const Code* findCode(std::uint16_t unit) {
    for (const Run& run : kRuns) {
        if (unit >= run.first && unit <= run.last) return &kCodes[run.position + (unit - run.first)];
    }
    return nullptr;
}

// Characters without a known code leave no trace in the key.
Code codeOf(std::uint16_t unit) {
    if (unit <= kRuns[0].last) return kCodes[unit];
    if (isSurrogate(unit)) return surrogateCode(unit);
    const Code* code = findCode(unit);
    return code != nullptr ? *code : Code{};
}

// The UTF-16 units of a UTF-8 text, as many as count for a key and without the blanks at its end. Bytes that
// are no UTF-8 give U+FFFD each.
class Units {
  public:
    explicit Units(std::string_view utf8) : text_(utf8) {
        if (text_.size() > kMaxUnits) text_ = text_.substr(0, bytesOfUnits());
        while (!text_.empty() && text_.back() == ' ')
            text_.remove_suffix(1);
    }

    // False at the end.
    bool next(std::uint16_t& unit) {
        if (left_ == 0 || (pendingLow_ == 0 && position_ >= text_.size())) return false;
        --left_;
        if (pendingLow_ != 0) {
            unit = pendingLow_;
            pendingLow_ = 0;
            return true;
        }
        const char32_t c = decode();
        if (c < 0x10000) {
            unit = static_cast<std::uint16_t>(c);
        } else {
            unit = static_cast<std::uint16_t>(0xD800 + ((c - 0x10000) >> 10));
            pendingLow_ = static_cast<std::uint16_t>(0xDC00 + ((c - 0x10000) & 0x3FF));
        }
        return true;
    }

  private:
    std::size_t bytesOfUnits() {
        unsigned units = 0;
        while (position_ < text_.size() && units < kMaxUnits)
            units += decode() < 0x10000 ? 1u : 2u;
        const std::size_t bytes = position_;
        position_ = 0;
        return bytes;
    }

    char32_t decode() {
        const char first = text_[position_];
        if ((first & 0x80) == 0) {
            ++position_;
            return static_cast<unsigned char>(first);
        }
        return decodeUtf8(text_, position_);
    }

    std::string_view text_;
    std::size_t position_ = 0;
    std::uint16_t pendingLow_ = 0;
    unsigned left_ = kMaxUnits;
};

void appendCode(std::uint16_t code, std::string& out) { appendBig(out, code, code > 0xFF ? 2 : 1); }

// Collects one key: inline bytes go straight to the output, the weaker levels wait until its end.
class KeyBuilder {
  public:
    explicit KeyBuilder(std::string& out) : out_(out) {}

    void add(std::uint16_t unit) {
        const Code code = codeOf(unit);
        const std::size_t before = units_;
        if (code.inlineBytes != 0) {
            appendCode(code.inlineBytes, out_);
            ++units_;
        }
        if (code.accent != 0) addAccent(code, before);
        if (code.kind == Kind::kSpecial) addSpecial(code.extra, before);
        if (code.kind == Kind::kKana) marks_.push_back(code.extra);
    }

    void finish() {
        constexpr char kLevelEnd = 0x01;
        out_ += kLevelEnd;
        while (!accents_.empty() && static_cast<std::uint8_t>(accents_.back()) <= kNoAccent)
            accents_.pop_back();
        out_ += accents_;
        if (!marks_.empty() || !specials_.empty()) {
            out_.append(2, kLevelEnd);
            if (!marks_.empty()) finishMarks();
            if (!specials_.empty()) out_.append(1, kLevelEnd).append(specials_);
        }
        out_ += '\0';
    }

  private:
    static constexpr std::uint8_t kNoAccent = 0x02;
    static constexpr std::uint8_t kLargeKana = 3;

    void addAccent(const Code& code, std::size_t before) {
        accentSeen_ = true;
        if (covered_ < before) {
            accents_.append(before - covered_, static_cast<char>(kNoAccent));
            covered_ = before;
        }
        if (code.kind != Kind::kMark) {
            appendCode(code.accent, accents_);
            ++covered_;
        } else if (accents_.empty()) {
            accents_ += static_cast<char>(code.accent);
            leadingMark_ = 1;
        } else {
            accents_.back() = static_cast<char>(static_cast<unsigned char>(accents_.back()) + code.accent);
        }
    }

    void addSpecial(std::uint8_t special, std::size_t before) {
        const std::size_t place = accentSeen_ ? accents_.size() + before - covered_ - leadingMark_ : before;
        appendBig(specials_, 0x8000 | (7 + 4 * place), 2);
        specials_ += '\x06';
        specials_ += static_cast<char>(special);
    }

    void finishMarks() {
        while (!marks_.empty() && marks_.back() == kLargeKana)
            marks_.pop_back();
        for (std::size_t i = 0; i < marks_.size(); i += 3) {
            const auto mark = [this](std::size_t k) { return k < marks_.size() ? unsigned{marks_[k]} : 0u; };
            out_ += static_cast<char>(0x80 | mark(i) << 4 | mark(i + 1) << 2 | mark(i + 2));
        }
        out_ += "\xFF\x02\x80\xFF\x80";
        if (!specials_.empty()) out_ += '\xFF';
    }

    std::string& out_;
    std::string accents_, specials_;
    std::vector<std::uint8_t> marks_;
    std::size_t units_ = 0;    // that gave inline bytes
    std::size_t covered_ = 0;  // units for which accents_ holds a weight
    std::size_t leadingMark_ = 0;
    bool accentSeen_ = false;
};

void appendKeyJet4(std::string_view utf8, std::string& out) {
    Units units(utf8);
    KeyBuilder key(out);
    for (std::uint16_t unit = 0; units.next(unit);)
        key.add(unit);
    key.finish();
}

// The inline bytes of a text one by one: the strongest level of its key.
class InlineBytes {
  public:
    explicit InlineBytes(std::string_view utf8) : units_(utf8) {}

    // -1 at the end.
    int next() {
        if (second_ >= 0) {
            const int byte = second_;
            second_ = -1;
            return byte;
        }
        for (std::uint16_t unit = 0; units_.next(unit);) {
            const Code code = codeOf(unit);
            plain_ = plain_ && code.accent == 0 && code.kind == Kind::kPlain;
            if (code.inlineBytes == 0) continue;
            if (code.inlineBytes <= 0xFF) return code.inlineBytes;
            second_ = code.inlineBytes & 0xFF;
            return code.inlineBytes >> 8;
        }
        return -1;
    }

    // So far nothing but inline bytes.
    bool plain() const { return plain_; }

  private:
    Units units_;
    int second_ = -1;
    bool plain_ = true;
};

int compareJet4(std::string_view a, std::string_view b) {
    InlineBytes left(a), right(b);
    for (;;) {
        const int x = left.next(), y = right.next();
        if (x != y) return x < y ? -1 : 1;
        if (x < 0) break;
    }
    if (left.plain() && right.plain()) return 0;
    return sortKey(TextOrder::kGeneralJet4, a).compare(sortKey(TextOrder::kGeneralJet4, b));
}

struct CodeJet3 {
    std::uint16_t weights = 0;
    std::uint8_t accent = 0;
};
constexpr CodeJet3 kCodesJet3[] = {
#include "jet/storage/TextKeyCodesJet3.inc"
};
static_assert(std::size(kCodesJet3) == 256);

// How many letters that can carry an accent a character stands for.
std::size_t accentPlaces(std::uint16_t weights) {
    constexpr std::string_view kBearers = "\x60\x62\x66\x6A\x70\x72\x76\x78\x7D";  // A C E I N O S U Y
    if (weights > 0xFF) return 2;
    return kBearers.find(static_cast<char>(weights)) == std::string_view::npos ? 0 : 1;
}

// The accents of a text as half bytes: 0, for each accent the unaccented places before it and itself, 0.
class AccentNibbles {
  public:
    void add(const CodeJet3& code) {
        if (code.accent == 0) {
            pending_ += accentPlaces(code.weights);
            return;
        }
        if (nibbles_.empty()) nibbles_.push_back(0);
        nibbles_.insert(nibbles_.end(), pending_, kNone);
        pending_ = 0;
        nibbles_.push_back(code.accent);
    }

    void finish(std::string& out) {
        nibbles_.push_back(0);
        if (nibbles_.size() % 2 != 0) nibbles_.push_back(0);
        for (std::size_t i = 0; i < nibbles_.size(); i += 2) {
            out += static_cast<char>(nibbles_[i] << 4 | nibbles_[i + 1]);
        }
    }

  private:
    static constexpr std::uint8_t kNone = 2;
    std::vector<std::uint8_t> nibbles_;
    std::size_t pending_ = 0;
};

void appendKeyJet3(std::string_view utf8, std::string& out) {
    std::string bytes = nachWindows1252(utf8);
    if (bytes.size() > kMaxUnits) bytes.resize(kMaxUnits);
    while (!bytes.empty() && bytes.back() == ' ')
        bytes.pop_back();
    AccentNibbles accents;
    for (const char c : bytes) {
        const CodeJet3& code = kCodesJet3[static_cast<std::uint8_t>(c)];
        appendCode(code.weights, out);
        accents.add(code);
    }
    accents.finish(out);
}

}  // namespace

void appendTextKey(TextOrder order, std::string_view utf8, std::string& out) {
    if (order == TextOrder::kGeneralJet3) {
        appendKeyJet3(utf8, out);
    } else {
        appendKeyJet4(utf8, out);
    }
}

bool textKeyIsKnown(TextOrder order, std::string_view utf8) {
    if (order == TextOrder::kUnsupported) return false;
    // A text that the code page cannot hold comes back changed.
    if (order == TextOrder::kGeneralJet3) return ausWindows1252(nachWindows1252(utf8)) == utf8;
    Units units(utf8);
    for (std::uint16_t unit = 0; units.next(unit);) {
        if (!isSurrogate(unit) && findCode(unit) == nullptr) return false;
    }
    return true;
}

std::string sortKey(TextOrder order, std::string_view utf8) {
    std::string key;
    appendTextKey(order, utf8, key);
    return key;
}

int compareText(TextOrder order, std::string_view a, std::string_view b) {
    if (a == b) return 0;
    if (order != TextOrder::kGeneralJet3) return compareJet4(a, b);
    return sortKey(order, a).compare(sortKey(order, b));
}

}  // namespace wendel::jet
