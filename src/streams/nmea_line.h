// One sentence of NMEA 0183 as it grows, field by field.
#pragma once
#include <optional>
#include <string>

namespace twr {

class NmeaLine {
public:
    // Begins a sentence of talker II at the end of a text.
    NmeaLine(std::string& out, const char* formatter);

    // The next field; empty without a number. Numbers are below a million.
    void Number(std::optional<double> value, int decimals);
    void Text(const char* text);

    // A number and its fixed unit in the next field; both empty without a number.
    void WithUnit(std::optional<double> value, int decimals, const char* unit);

    // The size of a number and its side in the next field, "W" for negative ones.
    void WithSide(std::optional<double> value, int decimals, const char* positive, const char* negative);

    // Degrees as ddmm.mmmmm with as many digits of degrees as given, and the side in the next field.
    void Coordinate(std::optional<double> degrees, int digits, const char* positive, const char* negative);

    // Of a moment that ISO 8601 has a text for: hhmmss.ss; ddmmyy; dd, mm and yyyy in three fields.
    void TimeOfDay(double days);
    void Date(double days);
    void FullDate(double days);

    // Ends the sentence, or takes it back if it says nothing.
    void End(bool saysSomething);

private:
    std::string& out_;
    const std::size_t start_;
};

}  // namespace twr
