#include "suite/audit/audit_event.h"

#include <array>
#include <charconv>
#include <cstdio>

#include "suite/log/log_entry.h"

namespace orvo::audit {
namespace {

struct Field {
    std::string_view key;
    Text Event::*text;
    bool is_always_there = false;
};
constexpr Field fields[] = {
    {"event", &Event::event, true}, {"result", &Event::result, true},
    {"user", &Event::user},         {"by", &Event::by},
    {"from", &Event::from},         {"server", &Event::server},
    {"what", &Event::what},         {"request", &Event::request},
};

constexpr bool is_surrogate(char16_t unit) { return unit >= 0xD800 && unit <= 0xDFFF; }

void append_escaped(std::string& json, TextView text) {
    // What is not well-formed has no UTF-8: every half is shown by its code.
    const bool is_whole = is_well_formed(text);
    Text plain;
    const auto flush = [&] {
        json += to_utf8(plain);
        plain.clear();
    };
    for (const char16_t unit : text) {
        if (unit == u'"' || unit == u'\\') {
            (plain += u'\\') += unit;
        } else if (unit == u'\t' || is_shown_by_code(unit) || (is_surrogate(unit) && !is_whole)) {
            flush();
            std::array<char, 8> code;
            std::snprintf(code.data(), code.size(), "\\u%04x", static_cast<unsigned>(unit));
            json += code.data();
        } else {
            plain += unit;
        }
    }
    flush();
}

TextView cut(TextView text) {
    if (text.size() <= longest_text) return text;
    const bool is_in_pair = (text[longest_text - 1] & 0xFC00) == 0xD800;
    return text.substr(0, longest_text - (is_in_pair ? 1 : 0));
}

void append_text(std::string& json, std::string_view key, TextView text) {
    ((json += json.size() > 1 ? ",\"" : "\"") += key) += "\":\"";
    append_escaped(json, cut(text));
    if (text.size() > longest_text) json += "…";
    json += '"';
}

// Reads what json_line writes, and whatever else is an object of texts.
class Reader {
public:
    explicit Reader(std::string_view json) : rest_(json) {}

    bool take(char c) {
        skip_blanks();
        if (!rest_.starts_with(c)) return false;
        rest_.remove_prefix(1);
        return true;
    }
    std::optional<Text> text() {
        if (!take('"')) return std::nullopt;
        Text text;
        for (;;) {
            const auto plain = rest_.find_first_of("\"\\");
            if (plain == std::string_view::npos) return std::nullopt;
            text += from_utf8(rest_.substr(0, plain));
            const bool is_end = rest_[plain] == '"';
            rest_.remove_prefix(plain + 1);
            if (is_end) return text;
            const auto unit = escaped();
            if (!unit) return std::nullopt;
            text += *unit;
        }
    }
    bool is_at_end() {
        skip_blanks();
        return rest_.empty();
    }

private:
    void skip_blanks() {
        rest_.remove_prefix(std::min(rest_.find_first_not_of(" \t\r"), rest_.size()));
    }

    std::optional<char16_t> escaped() {
        constexpr std::string_view letters = "\"\\/bfnrt";
        constexpr TextView meanings = u"\"\\/\b\f\n\r\t";
        if (rest_.empty()) return std::nullopt;
        const char letter = rest_.front();
        rest_.remove_prefix(1);
        if (const auto known = letters.find(letter); known != std::string_view::npos)
            return meanings[known];
        unsigned unit = 0;
        if (letter != 'u' || rest_.size() < 4) return std::nullopt;
        const auto read = std::from_chars(rest_.data(), rest_.data() + 4, unit, 16);
        if (read.ptr != rest_.data() + 4) return std::nullopt;
        rest_.remove_prefix(4);
        return static_cast<char16_t>(unit);
    }

    std::string_view rest_;
};

}  // namespace

std::string time_text(std::chrono::system_clock::time_point time) {
    using namespace std::chrono;
    const auto day = floor<days>(time);
    const year_month_day date(day);
    const hh_mm_ss clock(floor<milliseconds>(time) - day);
    std::array<char, 40> text;
    std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02d.%03dZ",
                  static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                  static_cast<unsigned>(date.day()), static_cast<int>(clock.hours().count()),
                  static_cast<int>(clock.minutes().count()),
                  static_cast<int>(clock.seconds().count()),
                  static_cast<int>(clock.subseconds().count()));
    return text.data();
}

std::optional<std::chrono::system_clock::time_point> try_time(std::string_view text) {
    using namespace std::chrono;
    // Where a number stands, how many digits it has, and what stands in front of it.
    struct Part {
        std::size_t digits;
        std::string_view before;
    };
    constexpr Part parts[] = {{4, ""}, {2, "-"}, {2, "-"}, {2, "T "}, {2, ":"}, {2, ":"}, {3, "."}};
    int numbers[std::size(parts)] = {};
    std::size_t read = 0;
    for (; read < std::size(parts) && !text.empty() && text != "Z"; ++read) {
        const Part& part = parts[read];
        if (!part.before.empty()) {
            if (part.before.find(text.front()) == std::string_view::npos) return std::nullopt;
            text.remove_prefix(1);
        }
        if (text.size() < part.digits) return std::nullopt;
        const char* end = text.data() + part.digits;
        if (text.front() < '0' || text.front() > '9' ||
            std::from_chars(text.data(), end, numbers[read]).ptr != end)
            return std::nullopt;
        text.remove_prefix(part.digits);
    }
    const bool is_whole = read == 3 || read >= 5;
    const auto [y, m, d, hour, minute, second, fraction] = numbers;
    const year_month_day date(year(y), month(static_cast<unsigned>(m)),
                              day(static_cast<unsigned>(d)));
    if (!is_whole || !(text.empty() || text == "Z") || !date.ok() || hour > 23 || minute > 59 ||
        second > 59)
        return std::nullopt;
    return sys_days(date) + hours(hour) + minutes(minute) + seconds(second) +
           milliseconds(fraction);
}

std::string json_line(const Event& event) {
    std::string json = "{";
    append_text(json, "time", from_utf8(time_text(event.time)));
    for (const Field& field : fields)
        if (const Text& text = event.*field.text; field.is_always_there || !text.empty())
            append_text(json, field.key, text);
    return json + '}';
}

std::optional<Event> try_parse(std::string_view line) {
    Reader reader(line);
    Event event;
    bool has_time = false;
    if (!reader.take('{')) return std::nullopt;
    do {
        const auto key = reader.text();
        if (!key || !reader.take(':')) return std::nullopt;
        auto value = reader.text();
        if (!value) return std::nullopt;
        if (key == u"time") {
            const auto time = try_time(to_utf8(*value));
            if (!time) return std::nullopt;
            event.time = *time;
            has_time = true;
        }
        for (const Field& field : fields)
            if (to_utf8(*key) == field.key) event.*field.text = std::move(*value);
    } while (reader.take(','));
    if (!reader.take('}') || !reader.is_at_end() || !has_time) return std::nullopt;
    return event;
}

}  // namespace orvo::audit
