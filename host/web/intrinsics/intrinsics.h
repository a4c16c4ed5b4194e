#pragma once

// What a server page finds ready: the interfaces, and their tables here. Identifiers, slot numbers
// and member numbers are the platform's own; members behind the platform's are this host's.

#include "host/web/intrinsics/intrinsic_interfaces.h"

namespace orvo {

namespace web::detail {
// Members of the platform's own count from here.
constexpr abi::DISPID own(int number) { return 0x60020000 + number; }
}  // namespace web::detail

// clang-format off
template <>
inline constexpr auto table_of<web::StringList> = describe<web::StringList>(
    "IStringList", "d97a6da0-a85d-11cf-83ae-00a0c90c2bd8",
    get<&web::StringList::Item>("Item", optional("i")).as_default(),
    get<&web::StringList::Count>("Count").id(web::detail::own(0x01)),
    get<&web::StringList::NewEnum>("_NewEnum").id(abi::DISPID_NEWENUM));

template <>
inline constexpr auto table_of<web::RequestDictionary> = describe<web::RequestDictionary>(
    "IRequestDictionary", "d97a6da0-a85f-11df-83ae-00a0c90c2bd8",
    get<&web::RequestDictionary::Item>("Item", optional("var")).as_default(),
    get<&web::RequestDictionary::NewEnum>("_NewEnum").id(abi::DISPID_NEWENUM),
    get<&web::RequestDictionary::Count>("Count").id(web::detail::own(0x02)),
    get<&web::RequestDictionary::Key>("Key", "var").id(web::detail::own(0x03)));

template <>
inline constexpr auto table_of<web::ReadCookie> = describe<web::ReadCookie>(
    "IReadCookie", "71eaf260-0ce0-11d0-a53e-00a0c90c2091",
    get<&web::ReadCookie::Item>("Item", optional("var")).as_default(),
    get<&web::ReadCookie::HasKeys>("HasKeys").id(web::detail::own(0x01)),
    get<&web::ReadCookie::NewEnum>("_NewEnum").id(abi::DISPID_NEWENUM),
    get<&web::ReadCookie::Count>("Count").id(web::detail::own(0x03)),
    get<&web::ReadCookie::Key>("Key", "var").id(web::detail::own(0x04)));

template <>
inline constexpr auto table_of<web::FormFile> = describe<web::FormFile>(
    "IFormFile", "5d4b3c53-6f0e-4a61-9d0c-1f6f4f6a2c32",
    get<&web::FormFile::Name>("Name"),
    get<&web::FormFile::FileName>("FileName").as_default(),
    get<&web::FormFile::ContentType>("ContentType"),
    get<&web::FormFile::Size>("Size"),
    method<&web::FormFile::SaveAs>("SaveAs", "path"),
    method<&web::FormFile::BinaryRead>("BinaryRead", optional("count")));

template <>
inline constexpr auto table_of<web::FormFiles> = describe<web::FormFiles>(
    "IFormFiles", "5d4b3c53-6f0e-4a61-9d0c-1f6f4f6a2c33",
    get<&web::FormFiles::Item>("Item", "index").as_default(),
    get<&web::FormFiles::Count>("Count"),
    get<&web::FormFiles::NewEnum>("_NewEnum").id(abi::DISPID_NEWENUM));

template <>
inline constexpr auto table_of<web::Request> = describe<web::Request>(
    "IRequest", "d97a6da0-a861-11cf-93ae-00a0c90c2bd8",
    get<&web::Request::Item>("Item", "name").as_default(),
    get<&web::Request::QueryString>("QueryString").id(web::detail::own(0x01)),
    get<&web::Request::Form>("Form").id(web::detail::own(0x02)),
    reserved(4),
    get<&web::Request::ServerVariables>("ServerVariables").id(web::detail::own(0x04)),
    reserved(6),
    get<&web::Request::Cookies>("Cookies").id(web::detail::own(0x06)),
    get<&web::Request::TotalBytes>("TotalBytes").id(web::detail::own(0x07)),
    method<&web::Request::BinaryRead>("BinaryRead", "count").id(web::detail::own(0x08)),
    get<&web::Request::Files>("Files"));

template <>
inline constexpr auto table_of<web::WriteCookie> = describe<web::WriteCookie>(
    "IWriteCookie", "d97a6da0-a862-11cf-84ae-00a0c90c2bd8",
    put<&web::WriteCookie::put_Item>("Item", optional("key"), "value").as_default(),
    put<&web::WriteCookie::put_Expires>("Expires", "date").id(web::detail::own(0x01)),
    put<&web::WriteCookie::put_Domain>("Domain", "domain").id(web::detail::own(0x02)),
    put<&web::WriteCookie::put_Path>("Path", "path").id(web::detail::own(0x03)),
    put<&web::WriteCookie::put_Secure>("Secure", "secure").id(web::detail::own(0x04)),
    get<&web::WriteCookie::HasKeys>("HasKeys").id(web::detail::own(0x05)),
    get<&web::WriteCookie::NewEnum>("_NewEnum").id(abi::DISPID_NEWENUM),
    put<&web::WriteCookie::put_HttpOnly>("HttpOnly", "httpOnly"),
    put<&web::WriteCookie::put_SameSite>("SameSite", "sameSite"),
    put<&web::WriteCookie::put_Value>("Value", "value"));

template <>
inline constexpr auto table_of<web::WriteCookies> = describe<web::WriteCookies>(
    "IWriteCookies", "5d4b3c53-6f0e-4a61-9d0c-1f6f4f6a2c31",
    get<&web::WriteCookies::Item>("Item", "name").as_default(),
    put<&web::WriteCookies::put_Item>("Item", "name", "value").as_default(),
    get<&web::WriteCookies::NewEnum>("_NewEnum").id(abi::DISPID_NEWENUM),
    get<&web::WriteCookies::Count>("Count"));

template <>
inline constexpr auto table_of<web::Response> = describe<web::Response>(
    "IResponse", "d97a6da0-a864-11cf-83be-00a0c90c2bd8",
    get<&web::Response::Buffer>("Buffer").id(web::detail::own(0x00)),
    put<&web::Response::put_Buffer>("Buffer", "buffer").id(web::detail::own(0x00)),
    get<&web::Response::ContentType>("ContentType").id(web::detail::own(0x02)),
    put<&web::Response::put_ContentType>("ContentType", "type").id(web::detail::own(0x02)),
    get<&web::Response::Expires>("Expires").id(web::detail::own(0x04)),
    put<&web::Response::put_Expires>("Expires", "minutes").id(web::detail::own(0x04)),
    get<&web::Response::ExpiresAbsolute>("ExpiresAbsolute").id(web::detail::own(0x06)),
    put<&web::Response::put_ExpiresAbsolute>("ExpiresAbsolute", "date").id(web::detail::own(0x06)),
    get<&web::Response::Cookies>("Cookies").id(web::detail::own(0x08)),
    get<&web::Response::Status>("Status").id(web::detail::own(0x09)),
    put<&web::Response::put_Status>("Status", "status").id(web::detail::own(0x09)),
    reserved(12),
    method<&web::Response::AddHeader>("AddHeader", "name", "value").id(web::detail::own(0x0C)),
    method<&web::Response::AppendToLog>("AppendToLog", "text").id(web::detail::own(0x0D)),
    method<&web::Response::BinaryWrite>("BinaryWrite", "bytes").id(web::detail::own(0x0E)),
    method<&web::Response::Clear>("Clear").id(web::detail::own(0x0F)),
    method<&web::Response::End>("End").id(web::detail::own(0x10)),
    method<&web::Response::Flush>("Flush").id(web::detail::own(0x11)),
    method<&web::Response::Redirect>("Redirect", "url").id(web::detail::own(0x12)),
    method<&web::Response::Write>("Write", "value").id(web::detail::own(0x13)),
    reserved(21),
    method<&web::Response::IsClientConnected>("IsClientConnected").id(web::detail::own(0x15)),
    get<&web::Response::CharSet>("CharSet").id(web::detail::own(0x16)),
    put<&web::Response::put_CharSet>("CharSet", "charset").id(web::detail::own(0x16)),
    method<&web::Response::Pics>("Pics", "label").id(web::detail::own(0x18)),
    get<&web::Response::CacheControl>("CacheControl").id(web::detail::own(0x19)),
    put<&web::Response::put_CacheControl>("CacheControl", "directives").id(web::detail::own(0x19)),
    get<&web::Response::CodePage>("CodePage"),
    put<&web::Response::put_CodePage>("CodePage", "codePage"),
    get<&web::Response::LCID>("LCID"),
    put<&web::Response::put_LCID>("LCID", "locale"));

template <>
inline constexpr auto table_of<web::VariantDictionary> = describe<web::VariantDictionary>(
    "IVariantDictionary", "4a7deb90-b069-11d0-b373-00a0c90c2bd8",
    get<&web::VariantDictionary::Item>("Item", "name").as_default(),
    put<&web::VariantDictionary::put_Item>("Item", "name", "value").as_default(),
    put_reference<&web::VariantDictionary::set_Item>("Item", "name", "value").as_default(),
    get<&web::VariantDictionary::Key>("Key", "index").id(web::detail::own(0x03)),
    get<&web::VariantDictionary::Count>("Count").id(web::detail::own(0x04)),
    get<&web::VariantDictionary::NewEnum>("_NewEnum").id(abi::DISPID_NEWENUM),
    method<&web::VariantDictionary::Remove>("Remove", "name").id(web::detail::own(0x06)),
    method<&web::VariantDictionary::RemoveAll>("RemoveAll").id(web::detail::own(0x07)));

template <>
inline constexpr auto table_of<web::Session> = describe<web::Session>(
    "ISessionObject", "d97a6da0-a865-11cf-83af-00a0c90c2bd8",
    get<&web::Session::SessionID>("SessionID").id(web::detail::own(0x00)),
    get<&web::Session::Value>("Value", "name").as_default(),
    put<&web::Session::put_Value>("Value", "name", "value").as_default(),
    put_reference<&web::Session::set_Value>("Value", "name", "value").as_default(),
    get<&web::Session::Timeout>("Timeout").id(web::detail::own(0x04)),
    put<&web::Session::put_Timeout>("Timeout", "minutes").id(web::detail::own(0x04)),
    method<&web::Session::Abandon>("Abandon").id(web::detail::own(0x06)),
    get<&web::Session::CodePage>("CodePage").id(web::detail::own(0x07)),
    put<&web::Session::put_CodePage>("CodePage", "codePage").id(web::detail::own(0x07)),
    get<&web::Session::LCID>("LCID").id(web::detail::own(0x09)),
    put<&web::Session::put_LCID>("LCID", "locale").id(web::detail::own(0x09)),
    get<&web::Session::StaticObjects>("StaticObjects").id(web::detail::own(0x0B)),
    get<&web::Session::Contents>("Contents").id(web::detail::own(0x0C)),
    get<&web::Session::FormToken>("FormToken"),
    method<&web::Session::IsFormToken>("IsFormToken", "token"));

template <>
inline constexpr auto table_of<web::Application> = describe<web::Application>(
    "IApplicationObject", "d97a6da0-a866-11cf-83ae-10a0c90c2bd8",
    get<&web::Application::Value>("Value", "name").as_default(),
    put<&web::Application::put_Value>("Value", "name", "value").as_default(),
    put_reference<&web::Application::set_Value>("Value", "name", "value").as_default(),
    method<&web::Application::Lock>("Lock").id(web::detail::own(0x03)),
    method<&web::Application::UnLock>("UnLock").id(web::detail::own(0x04)),
    get<&web::Application::StaticObjects>("StaticObjects").id(web::detail::own(0x05)),
    get<&web::Application::Contents>("Contents").id(web::detail::own(0x06)));

template <>
inline constexpr auto table_of<web::AspError> = describe<web::AspError>(
    "IASPError", "f5a6893e-a0f5-11d1-8c4b-00c04fc324a4",
    get<&web::AspError::ASPCode>("ASPCode").id(web::detail::own(0x00)),
    get<&web::AspError::Number>("Number").id(web::detail::own(0x01)),
    get<&web::AspError::Category>("Category").id(web::detail::own(0x02)),
    get<&web::AspError::File>("File").id(web::detail::own(0x03)),
    get<&web::AspError::Line>("Line").id(web::detail::own(0x04)),
    get<&web::AspError::Description>("Description").id(web::detail::own(0x05)),
    get<&web::AspError::ASPDescription>("ASPDescription").id(web::detail::own(0x06)),
    get<&web::AspError::Column>("Column").id(web::detail::own(0x07)),
    get<&web::AspError::Source>("Source").id(web::detail::own(0x08)),
    get<&web::AspError::Reference>("Reference"));

template <>
inline constexpr auto table_of<web::Server> = describe<web::Server>(
    "IServer", "d97a6da0-a867-11cf-83ae-01a0c90c2bd8",
    get<&web::Server::ScriptTimeout>("ScriptTimeout").id(web::detail::own(0x00)),
    put<&web::Server::put_ScriptTimeout>("ScriptTimeout", "seconds").id(web::detail::own(0x00)),
    method<&web::Server::CreateObject>("CreateObject", "progID").id(web::detail::own(0x02)),
    method<&web::Server::HTMLEncode>("HTMLEncode", "text").id(web::detail::own(0x03)),
    method<&web::Server::MapPath>("MapPath", "path").id(web::detail::own(0x04)),
    method<&web::Server::URLEncode>("URLEncode", "text").id(web::detail::own(0x05)),
    method<&web::Server::URLPathEncode>("URLPathEncode", "text").id(web::detail::own(0x06)),
    method<&web::Server::Execute>("Execute", "path").id(web::detail::own(0x07)),
    method<&web::Server::Transfer>("Transfer", "path").id(web::detail::own(0x08)),
    method<&web::Server::GetLastError>("GetLastError").id(web::detail::own(0x09)),
    method<&web::Server::LocalURL>("LocalURL", "url", optional("otherwise")),
    method<&web::Server::RandomText>("RandomText", "length"));
// clang-format on

}  // namespace orvo
