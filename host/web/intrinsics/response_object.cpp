#include "host/web/intrinsics/response_object.h"

#include <algorithm>

#include "host/web/intrinsics/write_cookies.h"
#include "host/web/intrinsics/written_text.h"
#include "platform/values/failure.h"

namespace orvo::web {
namespace {

[[noreturn]] void refuse(const Text& text) { throw Failure(runtime_error::invalid_call, {}, text); }

// Text that stands in a header: one line of it.
std::string header_value(TextView what, const Text& value) {
    std::string text = to_utf8(value);
    const auto breaks = [](char c) {
        return static_cast<unsigned char>(c) < 0x20 || static_cast<unsigned char>(c) == 0x7F;
    };
    if (std::ranges::any_of(text, breaks))
        refuse(Text(what) + u" has a control character, such as the end of a line");
    return text;
}

bool is_header_name(TextView name) {
    const auto is_token = [](char16_t c) {
        return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9') ||
               TextView(u"!#$%&'*+-.^_`|~").find(c) != TextView::npos;
    };
    return !name.empty() && std::ranges::all_of(name, is_token);
}

// What the server says itself.
bool is_reserved(TextView name) {
    for (const TextView own :
         {u"Content-Length", u"Transfer-Encoding", u"Connection", u"Keep-Alive", u"Set-Cookie"})
        if (equal_ignoring_case(name, own)) return true;
    return false;
}

}  // namespace

ResponseObject::ResponseObject(std::shared_ptr<PageContext> page) : page_(std::move(page)) {}

void ResponseObject::put_Buffer(bool is_buffered) {
    if (is_buffered == answer().is_buffered) return;
    head().is_buffered = is_buffered;
    if (!is_buffered && !answer().body.empty()) page_->flush();
}

void ResponseObject::put_ContentType(const Text& type) {
    header_value(u"ContentType", type);
    head().content_type = type;
}

void ResponseObject::put_CharSet(const Text& charset) {
    if (!equal_ignoring_case(charset, u"utf-8"))
        refuse(u"Pages are sent as UTF-8; CharSet cannot be \"" + charset + u"\"");
    head().charset = u"utf-8";
}

void ResponseObject::put_CacheControl(const Text& directives) {
    header_value(u"CacheControl", directives);
    head().cache_control = directives;
}

Variant ResponseObject::Expires() {
    return answer().expires_minutes ? Variant(*answer().expires_minutes) : Variant();
}

Variant ResponseObject::ExpiresAbsolute() {
    return answer().expires ? Variant(*answer().expires) : Variant();
}

Object ResponseObject::Cookies() {
    if (!cookies_) cookies_ = make<WriteCookiesObject>(page_).object();
    return cookies_;
}

Text ResponseObject::Status() {
    const Text& text = answer().status_text;
    return decimal(answer().status) + u' ' +
           (text.empty() ? from_utf8(reason_of_status(answer().status)) : text);
}

void ResponseObject::put_Status(const Text& status) {
    header_value(u"Status", status);
    const Text number = status.substr(0, status.find(u' '));
    const bool is_number = number.size() == 3 && std::ranges::all_of(number, [](char16_t c) {
                               return c >= u'0' && c <= u'9';
                           });
    if (!is_number || number < u"200" || number > u"599")
        refuse(u"A status is like \"404 Not Found\", from 200 to 599; this is \"" + status + u"\"");
    head().status = Variant(number).to<std::int32_t>();
    answer().status_text = status.size() > 4 ? status.substr(4) : Text();
}

void ResponseObject::AddHeader(const Text& name, const Text& value) {
    if (!is_header_name(name)) refuse(u"\"" + name + u"\" is no name of a header");
    if (is_reserved(name)) refuse(u"The header " + name + u" is the server's own business");
    // An answer has one of each.
    if (equal_ignoring_case(name, u"Content-Type")) return put_ContentType(value);
    if (equal_ignoring_case(name, u"Cache-Control")) return put_CacheControl(value);
    head().headers.emplace_back(to_utf8(name), header_value(u"The header", value));
}

void ResponseObject::AppendToLog(const Text& text) { answer().log_note += to_utf8(text); }

void ResponseObject::BinaryWrite(const Variant& bytes) {
    const auto content = bytes.try_bytes();
    if (!content) raise_runtime_error(runtime_error::type_mismatch);
    page_->write(*content);
}

void ResponseObject::End() {
    if (page_->control) page_->control->stop();
}

void ResponseObject::Redirect(const Text& url) {
    const std::string location = header_value(u"The address", url);
    if (location.empty()) refuse(u"Redirect needs an address");
    // Of the characters that no address has, a page's address may still have some.
    std::string encoded;
    for (const char c : location) {
        if (static_cast<unsigned char>(c) > 0x7E || c == ' ' || c == '"' || c == '<' || c == '>') {
            static constexpr char digits[] = "0123456789ABCDEF";
            encoded += '%';
            encoded += digits[static_cast<unsigned char>(c) >> 4];
            encoded += digits[static_cast<unsigned char>(c) & 15];
        } else {
            encoded += c;
        }
    }
    head();
    page_->clear();
    // After a form the browser asks for the new page with GET, as people expect of it.
    answer().status = page_->request.method == "POST" ? 303 : 302;
    answer().status_text.clear();
    std::erase_if(answer().headers, [](const auto& header) {
        return equal_ascii_ignoring_case(header.first, "location");
    });
    answer().headers.emplace_back("Location", encoded);
    End();
}

void ResponseObject::Write(const Variant& value) { page_->write(to_utf8(written_text(value))); }

void ResponseObject::Pics(const Text& label) { AddHeader(u"PICS-Label", label); }

void ResponseObject::put_CodePage(std::int32_t page) { require_utf8(page); }

void ResponseObject::put_LCID(std::int32_t locale) { require_usual_locale(locale); }

void require_utf8(std::int32_t code_page) {
    if (code_page != utf8_code_page)
        refuse(u"Pages are UTF-8; CodePage is 65001 and cannot be " + decimal(code_page));
}

void require_usual_locale(std::int32_t locale) {
    if (locale != usual_locale && locale != no_locale && locale != default_locale)
        refuse(
            u"Texts, numbers and dates are formatted the same everywhere; LCID is 1033 and "
            u"cannot be " +
            decimal(locale));
}

}  // namespace orvo::web
