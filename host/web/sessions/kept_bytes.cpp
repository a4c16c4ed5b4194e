#include "host/web/sessions/kept_bytes.h"

#include "platform/values/value_bytes.h"

namespace orvo::web {
namespace {

constexpr char version_of_values = 1;
constexpr char version_of_session = 1;
constexpr std::uint64_t longest_timeout = 525'600;  // minutes

bool try_skip(std::string_view& bytes, char version) {
    if (!bytes.starts_with(version)) return false;
    bytes.remove_prefix(1);
    return true;
}

void append_text(std::string& bytes, TextView text) {
    append_block(bytes, {reinterpret_cast<const char*>(text.data()), text.size() * 2});
}

std::optional<Text> try_take_text(std::string_view& bytes) {
    const auto block = try_take_block(bytes);
    if (!block || block->size() % 2 != 0) return {};
    Text text(block->size() / 2, u'\0');
    block->copy(reinterpret_cast<char*>(text.data()), block->size());
    return text;
}

void append_values(std::string& bytes, const NamedValues& values) {
    bytes += version_of_values;
    append_number(bytes, values.count());
    for (std::size_t i = 0; i < values.count(); ++i) {
        append_text(bytes, values.name_at(i));
        append_value(bytes, values.value_at(i));
    }
}

}  // namespace

std::string bytes_of(const NamedValues& values) {
    std::string bytes;
    append_values(bytes, values);
    return bytes;
}

std::string bytes_of(const SessionData& session) {
    std::string bytes(1, version_of_session);
    append_number(bytes, static_cast<std::uint64_t>(session.timeout.count()));
    append_block(bytes, session.form_token);
    append_text(bytes, session.public_id);
    append_values(bytes, session.values);
    return bytes;
}

std::optional<NamedValues> try_values_of(std::string_view bytes) {
    if (!try_skip(bytes, version_of_values)) return {};
    const auto count = try_take_number(bytes);
    if (!count) return {};
    NamedValues values;
    for (std::uint64_t i = 0; i < *count; ++i) {
        const auto name = try_take_text(bytes);
        if (!name) return {};
        auto value = try_take_value(bytes);
        if (!value) return {};
        values.put(*name, std::move(*value));
        // The same name twice, in whatever spelling.
        if (values.count() != i + 1) return {};
    }
    return bytes.empty() ? std::optional(std::move(values)) : std::nullopt;
}

std::optional<SessionData> try_session_of(std::string_view bytes) {
    if (!try_skip(bytes, version_of_session)) return {};
    const auto timeout = try_take_number(bytes);
    if (!timeout || *timeout > longest_timeout) return {};
    const auto token = try_take_block(bytes);
    if (!token) return {};
    auto id = try_take_text(bytes);
    if (!id) return {};
    auto values = try_values_of(bytes);
    if (!values) return {};
    return SessionData{.values = std::move(*values),
                       .timeout = std::chrono::minutes(*timeout),
                       .form_token = std::string(*token),
                       .public_id = std::move(*id)};
}

}  // namespace orvo::web
