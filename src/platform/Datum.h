#pragma once
// Moments of local wall-clock time and the calendar arithmetic that the suite's programs share.
//
// A Datum is a whole number of seconds since 30 December 1899 00:00; it knows no zone and no clock. It
// becomes a floating-point day number only where a file or the database stores one. Equality, order and
// differences are those of the seconds, so that no comparison fails on the last bit of a double.

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace wendel {

class Datum {
  public:
    // The zero of the calendar, 30 December 1899 00:00: "never", and the day part of a bare time of day.
    constexpr Datum() = default;

    static constexpr Datum ausSekunden(std::int64_t sekundenSeitNull) { return Datum(sekundenSeitNull); }

    // From the day number that files and the database hold, to the nearest second. Below zero the fraction
    // counts forward in its day: -1.25 is 29 December 1899 06:00.
    // Throws Fehler kUeberlauf for NaN and for moments outside the years 100 to 9999.
    static Datum ausTageszahl(double tage);

    // The day number, computed as days + seconds/86400.0 as other writers of the format do.
    double tageszahl() const;

    constexpr std::int64_t sekunden() const { return sekunden_; }

    friend constexpr auto operator<=>(Datum, Datum) = default;

    // Datum + Uhrzeit: both count from the same zero, so a day and a time of day simply add up.
    friend constexpr Datum operator+(Datum a, Datum b) { return Datum(a.sekunden_ + b.sekunden_); }

    Datum datumsteil() const;   // the same day at 00:00
    Datum uhrzeitteil() const;  // the same time on day zero
    Datum aufMinute() const;    // seconds cut off
    Datum plusSekunden(std::int64_t n) const { return Datum(sekunden_ + n); }

  private:
    constexpr explicit Datum(std::int64_t sekunden) : sekunden_(sekunden) {}
    std::int64_t sekunden_ = 0;
};

// A moment taken apart: proleptic Gregorian calendar, wochentag Sunday 1 to Saturday 7.
struct Datumsteile {
    int jahr, monat, tag, stunde, minute, sekunde, wochentag;
};
Datumsteile zerlegt(Datum d);

// Sunday 1 to Saturday 7; and with Monday as the first day, Monday 1 to Sunday 7.
int Weekday(Datum d);
int wochentagAbMontag(Datum d);

// The units of DateDiff and DateAdd by their letters.
enum class Einheit : char { Sekunde = 's', Minute = 'n', Stunde = 'h', Tag = 'd' };

// Number of unit boundaries crossed from a to b, negative when b is earlier: both are cut to the unit, then
// subtracted. 20:14:59 to 20:15:00 is one minute.
std::int64_t DateDiff(Einheit einheit, Datum a, Datum b);

// Plain calendar arithmetic; 23:55 plus 10 minutes is 00:05 of the next day. Throws Fehler
// kUngueltigesArgument for a result outside the years 100 to 9999.
Datum DateAdd(Einheit einheit, std::int64_t anzahl, Datum d);

// Overflowing parts are carried (month 13, day 0, minute 60). Years 0 to 29 mean 2000 to 2029, 30 to 99 mean
// 1930 to 1999, before anything is carried. Throws Fehler kUeberlauf for an argument outside 16 bits and
// kUngueltigesArgument for a result outside the years 100 to 9999.
Datum DateSerial(std::int64_t jahr, std::int64_t monat, std::int64_t tag);
Datum TimeSerial(std::int64_t stunde, std::int64_t minute, std::int64_t sekunde);

// True when the calendar has this day as written, without carrying.
bool istKalendertag(int jahr, int monat, int tag);

// A moment as text after a pattern of date tokens, with German names: d dd ddd dddd m mm mmm mmmm yy yyyy
// h hh n nn s ss in any case, \x for a literal x; "m"/"mm" is the minute when the token before it is an
// hour; ":" and "/" become the German separators ":" and "."; everything else is printed as it is.
std::string Format(Datum d, std::string_view muster);

// A moment turned into text by itself: "24.12.2012 20:15:03", at midnight "24.12.2012", on day zero, its
// midnight included, "20:15:03".
std::string datumAlsText(Datum d);

// "yyyymmddhhnnss", the form for comparing and storing moments as text.
std::string datumKompakt(Datum d);
// And back, nothing unless it is 14 digits that name a day of the calendar and a time of day.
std::optional<Datum> datumAusKompakt(std::string_view text);

}  // namespace wendel
