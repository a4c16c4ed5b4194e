#include "host/web/intrinsics/server_object.h"

#include "host/web/messages/encoding.h"
#include "host/web/messages/local_url.h"
#include "host/web/messages/random_token.h"
#include "platform/interfaces/create.h"
#include "platform/values/failure.h"

namespace orvo::web {
namespace {

Text text_of(const Variant& value) {
    return value.is_empty() || value.is_null() ? Text() : value.to<Text>();
}

}  // namespace

PageControl& ServerObject::control() {
    if (!page_->control) throw Failure(runtime_error::invalid_call, {}, u"The page has ended");
    return *page_->control;
}

std::int32_t ServerObject::ScriptTimeout() {
    return static_cast<std::int32_t>(page_->time_limit.count());
}

void ServerObject::put_ScriptTimeout(std::int32_t seconds) {
    if (seconds < 1 || seconds > longest_script)
        throw Failure(runtime_error::invalid_call, {},
                      u"ScriptTimeout is 1 to " + decimal(longest_script) + u" seconds, not " +
                          decimal(seconds));
    page_->time_limit = std::chrono::seconds(seconds);
    control().apply_time_limit();
}

Object ServerObject::CreateObject(const Text& progid) { return page_->create_object(progid); }

Text ServerObject::HTMLEncode(const Variant& text) { return html_encode(text_of(text)); }
Text ServerObject::URLEncode(const Variant& text) { return url_encode(text_of(text)); }
Text ServerObject::URLPathEncode(const Variant& text) { return url_path_encode(text_of(text)); }

Text ServerObject::MapPath(const Text& path) {
    if (!page_->maps_paths)
        throw Failure(runtime_error::invalid_call, {},
                      u"MapPath cannot be used when a session or the application ends");
    const std::filesystem::path asked = to_utf8(replaced(path, u"\\", u"/"));
    const std::filesystem::path from_root =
        asked.is_absolute() ? asked
                            : std::filesystem::path(page_->running_path).parent_path() / asked;
    const std::string normal = from_root.lexically_normal().generic_string();
    if (path.find(u'\0') != Text::npos || normal.find("/../") != std::string::npos ||
        normal.ends_with("/.."))
        throw Failure(runtime_error::invalid_call, {}, u"\"" + path + u"\" is outside the site");
    return from_utf8((page_->root / std::filesystem::path(normal).relative_path()).string());
}

void ServerObject::Execute(const Text& path) { control().execute(path); }

void ServerObject::Transfer(const Text& path) {
    page_->clear();
    control().execute(path);
    control().stop();
}

Text ServerObject::LocalURL(const Variant& url, const Text& otherwise) {
    const Text text = text_of(url);
    return is_local_url(text) ? text : otherwise;
}

Text ServerObject::RandomText(std::int32_t length) {
    if (length < 1 || length > longest_random_text)
        throw Failure(runtime_error::invalid_call, {},
                      u"RandomText gives 1 to " + decimal(longest_random_text) +
                          u" characters, not " + decimal(length));
    return from_utf8(random_text(static_cast<std::size_t>(length)));
}

}  // namespace orvo::web
