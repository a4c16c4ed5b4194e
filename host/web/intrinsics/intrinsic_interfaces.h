#pragma once

// The objects that a server page finds ready, as pages and components see them: Request, Response,
// Session, Application and Server. Their tables stand in intrinsics.h, which users include.

#include <optional>

#include "platform/interfaces/interface.h"
#include "platform/values/date.h"
#include "platform/values/values.h"
#include "platform/values/variant.h"

namespace orvo::web {

// The values of one field of a query or a form. By number from 1; without one all of them, with ",
// " between; the empty text where there are none.
class StringList {
public:
    virtual Variant Item(const Variant& index) = 0;
    virtual std::int32_t Count() = 0;
    virtual Object NewEnum() = 0;

protected:
    ~StringList() = default;
};

// Fields by name without regard to case, or by number from 1; as a whole, the text that came.
class RequestDictionary {
public:
    virtual Variant Item(const Variant& name) = 0;
    // Over the names.
    virtual Object NewEnum() = 0;
    virtual std::int32_t Count() = 0;
    virtual Variant Key(const Variant& index) = 0;

protected:
    ~RequestDictionary() = default;
};

// A cookie that came: its text, or the value of one of its keys.
class ReadCookie {
public:
    virtual Variant Item(const Variant& key) = 0;
    virtual bool HasKeys() = 0;
    virtual Object NewEnum() = 0;
    virtual std::int32_t Count() = 0;
    virtual Variant Key(const Variant& index) = 0;

protected:
    ~ReadCookie() = default;
};

// A file that came with a form. It is kept while a page runs.
class FormFile {
public:
    // Of the form's field.
    virtual Text Name() = 0;
    // The last part of what the browser calls it, without its folder. Whoever sent the file chose
    // it.
    virtual Text FileName() = 0;
    // As the browser says; empty where it says nothing.
    virtual Text ContentType() = 0;
    virtual double Size() = 0;
    // Writes it to a new file. The path is one of the system's, as Server.MapPath gives; it lies
    // below a folder that the site's FileFolders name. Raises 5 for a path with a NUL, 58 for a
    // file that is there, 70 for one that may not be written, 76 for a folder that is not there.
    virtual void SaveAs(const Text& path) = 0;
    // The next bytes of it, as Request.BinaryRead; all of them without a number.
    virtual Variant BinaryRead(const Variant& count) = 0;

protected:
    ~FormFile() = default;
};

// The files of a form, by number from 1, or by the name of their field: the first one of that name.
class FormFiles {
public:
    // Nothing (the empty object) where there is none of that name. Raises 9 for such a number.
    virtual Object Item(const Variant& index) = 0;
    virtual std::int32_t Count() = 0;
    // Over the files.
    virtual Object NewEnum() = 0;

protected:
    ~FormFiles() = default;
};

class Request {
public:
    // From the query, the form, the cookies or the server's variables, whichever has it first.
    virtual Variant Item(const Text& name) = 0;
    virtual Object QueryString() = 0;
    virtual Object Form() = 0;
    virtual Object ServerVariables() = 0;
    virtual Object Cookies() = 0;
    virtual std::int32_t TotalBytes() = 0;
    // The next bytes of what came with the request, 64 MiB at a time at most; `count` is how many,
    // and afterwards how many they were. A page uses either this, or Form and Files.
    virtual Variant BinaryRead(Variant& count) = 0;
    virtual Object Files() = 0;

protected:
    ~Request() = default;
};

// A cookie that goes out. Path "/" unless put; Secure where the page came with TLS; HttpOnly and
// SameSite "Lax" unless put.
class WriteCookie {
public:
    virtual void put_Item(const Variant& key, const Text& value) = 0;
    virtual void put_Expires(Date date) = 0;
    virtual void put_Domain(const Text& domain) = 0;
    virtual void put_Path(const Text& path) = 0;
    virtual void put_Secure(bool is_secure) = 0;
    virtual bool HasKeys() = 0;
    virtual Object NewEnum() = 0;
    virtual void put_HttpOnly(bool is_http_only) = 0;
    virtual void put_SameSite(const Text& same_site) = 0;
    virtual void put_Value(const Text& value) = 0;

protected:
    ~WriteCookie() = default;
};

// The cookies that go out. Reading one that is not there makes it, with an empty value.
class WriteCookies {
public:
    virtual Variant Item(const Variant& name) = 0;
    virtual void put_Item(const Text& name, const Text& value) = 0;
    virtual Object NewEnum() = 0;
    virtual std::int32_t Count() = 0;

protected:
    ~WriteCookies() = default;
};

// An answer is kept back until the page has ended, or sends what there is by Flush. From then on
// what goes out in front of it (headers, cookies, status) is refused with E_FAIL.
class Response {
public:
    // False: what is written is sent at once.
    virtual bool Buffer() = 0;
    virtual void put_Buffer(bool buffer) = 0;
    virtual Text ContentType() = 0;
    virtual void put_ContentType(const Text& type) = 0;
    // Minutes; none: the page is not to be kept.
    virtual Variant Expires() = 0;
    virtual void put_Expires(std::int32_t minutes) = 0;
    virtual Variant ExpiresAbsolute() = 0;
    virtual void put_ExpiresAbsolute(Date date) = 0;
    virtual Object Cookies() = 0;
    // "404 Not Found"
    virtual Text Status() = 0;
    virtual void put_Status(const Text& status) = 0;
    virtual void AddHeader(const Text& name, const Text& value) = 0;
    virtual void AppendToLog(const Text& text) = 0;
    virtual void BinaryWrite(const Variant& bytes) = 0;
    virtual void Clear() = 0;
    // The page ends here; what it wrote is sent.
    virtual void End() = 0;
    virtual void Flush() = 0;
    virtual void Redirect(const Text& url) = 0;
    virtual void Write(const Variant& value) = 0;
    virtual bool IsClientConnected() = 0;
    virtual Text CharSet() = 0;
    virtual void put_CharSet(const Text& charset) = 0;
    // A header PICS-Label.
    virtual void Pics(const Text& label) = 0;
    virtual Text CacheControl() = 0;
    virtual void put_CacheControl(const Text& directives) = 0;
    // 65001 and 1033; to put something else is refused.
    virtual std::int32_t CodePage() = 0;
    virtual void put_CodePage(std::int32_t page) = 0;
    virtual std::int32_t LCID() = 0;
    virtual void put_LCID(std::int32_t locale) = 0;

protected:
    ~Response() = default;
};

// The values of a session or of the application.
class VariantDictionary {
public:
    virtual Variant Item(const Variant& name) = 0;
    virtual void put_Item(const Variant& name, const Variant& value) = 0;
    virtual void set_Item(const Variant& name, const Variant& value) = 0;
    virtual Variant Key(const Variant& index) = 0;
    virtual std::int32_t Count() = 0;
    virtual Object NewEnum() = 0;
    virtual void Remove(const Variant& name) = 0;
    virtual void RemoveAll() = 0;

protected:
    ~VariantDictionary() = default;
};

class Session {
public:
    // Tells sessions apart; it is not what the browser's cookie says.
    virtual Text SessionID() = 0;
    // Empty where there is none of that name.
    virtual Variant Value(const Text& name) = 0;
    // Of an object that only its own page may use, the default value is kept; set_Value refuses it.
    virtual void put_Value(const Text& name, const Variant& value) = 0;
    virtual void set_Value(const Text& name, const Variant& value) = 0;
    // Minutes without a request after which the session ends; 1 to 1440.
    virtual std::int32_t Timeout() = 0;
    virtual void put_Timeout(std::int32_t minutes) = 0;
    // The session ends with this page.
    virtual void Abandon() = 0;
    // 65001 and 1033; to put something else is refused.
    virtual std::int32_t CodePage() = 0;
    virtual void put_CodePage(std::int32_t page) = 0;
    virtual std::int32_t LCID() = 0;
    virtual void put_LCID(std::int32_t locale) = 0;
    // Empty: objects are made by the page that needs them.
    virtual Object StaticObjects() = 0;
    virtual Object Contents() = 0;
    // For a hidden field of each form of this session, and the check of what came back with it.
    virtual Text FormToken() = 0;
    virtual bool IsFormToken(const Text& token) = 0;

protected:
    ~Session() = default;
};

class Application {
public:
    virtual Variant Value(const Text& name) = 0;
    virtual void put_Value(const Text& name, const Variant& value) = 0;
    virtual void set_Value(const Text& name, const Variant& value) = 0;
    virtual void Lock() = 0;
    virtual void UnLock() = 0;
    virtual Object StaticObjects() = 0;  // empty, as the session's
    virtual Object Contents() = 0;

protected:
    ~Application() = default;
};

// What an error page is told of the failure that it is shown for.
class AspError {
public:
    // "ASP 0113" of a page that took too long; otherwise empty.
    virtual Text ASPCode() = 0;
    // 0 where nothing has failed.
    virtual std::int32_t Number() = 0;
    // Who raised it: a component, the script, or the pages themselves.
    virtual Text Category() = 0;
    // As a path of the site; empty, and 0, where it is not known.
    virtual Text File() = 0;
    virtual std::int32_t Line() = 0;
    virtual Text Description() = 0;
    // Of what the pages themselves raised.
    virtual Text ASPDescription() = 0;
    // Not known: -1.
    virtual std::int32_t Column() = 0;
    // The text of the line.
    virtual Text Source() = 0;
    // Under which the log has more.
    virtual Text Reference() = 0;

protected:
    ~AspError() = default;
};

class Server {
public:
    // Seconds.
    virtual std::int32_t ScriptTimeout() = 0;
    virtual void put_ScriptTimeout(std::int32_t seconds) = 0;
    virtual Object CreateObject(const Text& progid) = 0;
    virtual Text HTMLEncode(const Variant& text) = 0;
    virtual Text MapPath(const Text& path) = 0;
    virtual Text URLEncode(const Variant& text) = 0;
    virtual Text URLPathEncode(const Variant& text) = 0;
    // Runs another page, among globals of its own, then goes on; Transfer does not go on. The path
    // may have a query, which is the other page's then.
    virtual void Execute(const Text& path) = 0;
    virtual void Transfer(const Text& path) = 0;
    // For an error page; on any other one nothing has failed.
    virtual Object GetLastError() = 0;
    // The address, where it leads to a page of this site; `otherwise` for any other text.
    virtual Text LocalURL(const Variant& url, const Text& otherwise) = 0;
    // Letters and digits by chance, for a password that is used once: 1 to 1000.
    virtual Text RandomText(std::int32_t length) = 0;

protected:
    ~Server() = default;
};

}  // namespace orvo::web
