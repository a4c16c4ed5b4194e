#include "platform/objects/recordset/conversion.h"
#include "platform/objects/recordset/criteria.h"
#include "platform/objects/recordset/errors.h"

namespace orvo::recordset {
namespace {

[[noreturn]] void refuse() { raise_runtime_error(wrong_arguments); }

using Alternatives = std::vector<std::vector<Clause>>;

enum class Quotes { end_the_text, may_be_doubled };

class Reader {
public:
    Reader(TextView text, const std::vector<Column>& columns, Quotes quotes)
        : text_(text), columns_(columns), quotes_(quotes) {}

    Clause clause() {
        const std::size_t column = read_column();
        const Comparison comparison = read_comparison();
        skip_blanks();
        if (comparison == Comparison::contains) return like(column);
        return {column, comparison, read_value(columns_[column])};
    }

    Alternatives alternatives() {
        Alternatives all = conjunction();
        while (take_word(u"OR")) {
            for (auto& more : conjunction()) all.push_back(std::move(more));
        }
        return all;
    }

    void end() {
        skip_blanks();
        if (at_ != text_.size()) refuse();
    }

private:
    // Terms joined by AND: each must be free of alternatives when there are several.
    Alternatives conjunction() {
        Alternatives first = term();
        while (take_word(u"AND")) {
            Alternatives next = term();
            if (first.size() != 1 || next.size() != 1) refuse();
            for (Clause& more : next.front()) first.front().push_back(std::move(more));
        }
        return first;
    }

    Alternatives term() {
        skip_blanks();
        if (!take(u'(')) return {{clause()}};
        Alternatives inner = alternatives();
        skip_blanks();
        if (!take(u')')) refuse();
        return inner;
    }

    std::size_t read_column() {
        skip_blanks();
        TextView name;
        if (take(u'[')) {
            name = up_to(u']');
        } else {
            const std::size_t from = at_;
            while (at_ < text_.size() && TextView(u" \t<>=()").find(text_[at_]) == TextView::npos)
                ++at_;
            name = text_.substr(from, at_ - from);
        }
        if (name.empty()) refuse();
        const auto column = find_column(columns_, name);
        if (!column) raise_runtime_error(no_such_item);
        return *column;
    }

    // LIKE is told as `contains` here.
    Comparison read_comparison() {
        skip_blanks();
        if (take(u'<')) {
            if (take(u'>')) return Comparison::unequal;
            return take(u'=') ? Comparison::at_most : Comparison::less;
        }
        if (take(u'>')) return take(u'=') ? Comparison::at_least : Comparison::greater;
        if (take(u'=')) return Comparison::equal;
        if (take_word(u"LIKE")) return Comparison::contains;
        refuse();
    }

    Clause like(std::size_t column) {
        Text pattern;
        if (take(u'\''))
            pattern = quoted();
        else if (take(u'#'))
            pattern = up_to(u'#');
        else
            refuse();
        auto is_star = [](char16_t c) { return c == u'*' || c == u'%'; };
        const bool is_open_behind = !pattern.empty() && is_star(pattern.back());
        if (is_open_behind) pattern.pop_back();
        const bool is_open_before = !pattern.empty() && is_star(pattern.front());
        if (is_open_before) pattern.erase(0, 1);
        if (is_open_before && !is_open_behind) refuse();
        for (char16_t c : pattern)
            if (is_star(c)) refuse();
        const Comparison comparison = is_open_before   ? Comparison::contains
                                      : is_open_behind ? Comparison::begins_with
                                                       : Comparison::equal;
        return {column, comparison, pattern};
    }

    Variant read_value(const Column& column) {
        if (take(u'\'')) return fitting(column, Variant(quoted()));
        if (take(u'#')) {
            const Variant marked = Variant(up_to(u'#'));
            if (column.form() != Form::text)
                if (auto date = try_converted(marked, abi::VT_DATE)) return std::move(*date);
            return fitting(column, marked);
        }
        if (take_word(u"Null")) return Variant::null();
        const std::size_t from = at_;
        while (at_ < text_.size() && text_[at_] != u' ' && text_[at_] != u'\t' &&
               text_[at_] != u')')
            ++at_;
        const Variant word = Variant(text_.substr(from, at_ - from));
        auto number = try_converted(word, abi::VT_R8);
        if (!number) {
            const auto boolean = try_converted(word, abi::VT_BOOL);
            if (boolean) number = try_converted(*boolean, abi::VT_R8);
        }
        if (!number) refuse();
        return column.form() == Form::text ? word : fitting(column, *number);
    }

    // The value as the column's cells are compared with it.
    static Variant fitting(const Column& column, const Variant& value) {
        abi::VARTYPE type = abi::VT_EMPTY;
        switch (column.form()) {
            case Form::number:
                type = abi::VT_R8;
                break;
            case Form::date:
                type = abi::VT_DATE;
                break;
            case Form::text:
                type = abi::VT_BSTR;
                break;
            case Form::bytes:
                refuse();
            case Form::any:
                return value;
        }
        auto converted = try_converted(value, type);
        if (!converted) refuse();
        return std::move(*converted);
    }

    Text quoted() {
        Text content(up_to(u'\''));
        while (quotes_ == Quotes::may_be_doubled && take(u'\'')) {
            content += u'\'';
            content += up_to(u'\'');
        }
        return content;
    }

    // What stands before the next `end`, which is taken too.
    TextView up_to(char16_t end) {
        const std::size_t found = text_.find(end, at_);
        if (found == TextView::npos) refuse();
        const TextView content = text_.substr(at_, found - at_);
        at_ = found + 1;
        return content;
    }

    bool take(char16_t c) {
        if (at_ == text_.size() || text_[at_] != c) return false;
        ++at_;
        return true;
    }

    bool take_word(TextView word) {
        skip_blanks();
        if (!equal_ignoring_case(text_.substr(at_, word.size()), word)) return false;
        const std::size_t behind = at_ + word.size();
        const bool ends =
            behind == text_.size() || TextView(u" \t('#[)").find(text_[behind]) != TextView::npos;
        if (ends) at_ = behind;
        return ends;
    }

    void skip_blanks() {
        while (at_ < text_.size() && (text_[at_] == u' ' || text_[at_] == u'\t')) ++at_;
    }

    TextView text_;
    const std::vector<Column>& columns_;
    Quotes quotes_;
    std::size_t at_ = 0;
};

}  // namespace

Clause read_find(TextView text, const std::vector<Column>& columns) {
    Reader reader(text, columns, Quotes::end_the_text);
    Clause clause = reader.clause();
    reader.end();
    return clause;
}

Criteria read_filter(TextView text, const std::vector<Column>& columns) {
    Reader reader(text, columns, Quotes::may_be_doubled);
    Criteria criteria(reader.alternatives());
    reader.end();
    return criteria;
}

}  // namespace orvo::recordset
