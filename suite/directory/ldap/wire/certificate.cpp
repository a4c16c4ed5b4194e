#include "suite/directory/ldap/wire/certificate.h"

#include <arpa/inet.h>

#include <algorithm>
#include <array>
#include <optional>
#include <vector>

#include "suite/directory/ldap/wire/ber.h"
#include "suite/directory/names/ascii.h"
#include "suite/directory/policy/failures.h"

namespace orvo::directory::ldap::detail {
namespace {

constexpr unsigned char object_identifier = 0x06;
constexpr unsigned char utc_time = 0x17;
constexpr unsigned char version_tag = 0xA0;
constexpr unsigned char extensions_tag = 0xA3;
constexpr unsigned char dns_name = 0x82;
constexpr unsigned char ip_address = 0x87;

constexpr std::string_view subject_alternative_name = "\x55\x1D\x11";

struct NameType {
    std::string_view identifier;
    const char* letters;
};
constexpr NameType name_types[] = {{"\x55\x04\x03", "CN"}, {"\x55\x04\x06", "C"},
                                   {"\x55\x04\x07", "L"},  {"\x55\x04\x08", "ST"},
                                   {"\x55\x04\x0A", "O"},  {"\x55\x04\x0B", "OU"}};

struct Certificate {
    std::string subject;
    std::string issuer;
    std::string common_name;
    std::string begin;  // "20261122093000Z"
    std::string end;
    std::vector<std::string> names;  // hosts and addresses
};

// The elements within another one; nothing where they cannot be read.
std::optional<std::vector<ber::Element>> elements_of(std::string_view content) {
    std::vector<ber::Element> elements;
    while (!content.empty()) {
        const std::optional<ber::Element> element = ber::take_element(content);
        if (!element) return std::nullopt;
        elements.push_back(*element);
    }
    return elements;
}

// "CN=dir01,O=Shop"; the parts of a kind that is not known are left out.
std::string name_in(std::string_view content, std::string* common_name = nullptr) {
    std::string written;
    const auto sets = elements_of(content);
    if (!sets) return written;
    for (const ber::Element& set : *sets) {
        std::string_view pairs = set.content;
        const auto pair = ber::take_element(pairs);
        const auto parts = pair ? elements_of(pair->content) : std::nullopt;
        if (!parts || parts->size() != 2 || (*parts)[0].tag != object_identifier) continue;
        for (const NameType& type : name_types) {
            if ((*parts)[0].content != type.identifier) continue;
            const std::string value((*parts)[1].content);
            if (common_name && type.letters == std::string_view("CN")) *common_name = value;
            written += (written.empty() ? "" : ",") + std::string(type.letters) + "=" + value;
        }
    }
    return written;
}

// A year of two digits is one of 1950 to 2049 (RFC 5280, 4.1.2.5.1).
std::string time_in(const ber::Element& element) {
    const std::string digits(element.content);
    if (element.tag != utc_time) return digits;
    return (digits < "5" ? "20" : "19") + digits;
}

std::string address_in(std::string_view bytes) {
    std::array<char, INET6_ADDRSTRLEN> text{};
    const int family = bytes.size() == 4 ? AF_INET : AF_INET6;
    if (bytes.size() != 4 && bytes.size() != 16) return {};
    return ::inet_ntop(family, bytes.data(), text.data(), text.size()) ? text.data() : "";
}

void read_names(std::string_view octets, Certificate& certificate) {
    const auto list = ber::take_element(octets);
    const auto names = list ? elements_of(list->content) : std::nullopt;
    if (!names) return;
    for (const ber::Element& name : *names) {
        if (name.tag == dns_name) certificate.names.emplace_back(name.content);
        if (name.tag == ip_address) certificate.names.push_back(address_in(name.content));
    }
}

void read_extensions(std::string_view content, Certificate& certificate) {
    const auto list = ber::take_element(content);
    const auto extensions = list ? elements_of(list->content) : std::nullopt;
    if (!extensions) return;
    for (const ber::Element& extension : *extensions) {
        const auto parts = elements_of(extension.content);
        if (!parts || parts->size() < 2 || (*parts)[0].content != subject_alternative_name)
            continue;
        const ber::Element& value = parts->back();
        if (value.tag == ber::octet_string) read_names(value.content, certificate);
    }
}

// RFC 5280, 4.1: version, serial number, algorithm, issuer, validity, subject, key, extensions.
std::optional<Certificate> try_read(std::string_view bytes) {
    const auto whole = ber::take_element(bytes);
    std::string_view inner = whole ? whole->content : std::string_view();
    const auto signed_part = ber::take_element(inner);
    const auto fields = signed_part ? elements_of(signed_part->content) : std::nullopt;
    if (!fields || fields->empty()) return std::nullopt;
    const std::size_t first = fields->front().tag == version_tag ? 1 : 0;
    if (fields->size() < first + 6) return std::nullopt;
    const auto validity = elements_of((*fields)[first + 3].content);
    if (!validity || validity->size() != 2) return std::nullopt;
    Certificate certificate;
    certificate.issuer = name_in((*fields)[first + 2].content);
    certificate.begin = time_in((*validity)[0]);
    certificate.end = time_in((*validity)[1]);
    certificate.subject = name_in((*fields)[first + 4].content, &certificate.common_name);
    for (const ber::Element& field : *fields)
        if (field.tag == extensions_tag) read_extensions(field.content, certificate);
    if (certificate.names.empty()) certificate.names.push_back(certificate.common_name);
    return certificate;
}

// "*.shop.example" stands for one more label in front.
bool is_for(const Certificate& certificate, const std::string& host) {
    return std::ranges::any_of(certificate.names, [&](const std::string& name) {
        if (!name.starts_with("*.")) return ascii::equal_ignoring_case(name, host);
        const std::size_t dot = host.find('.');
        return dot != std::string::npos &&
               ascii::equal_ignoring_case(name.substr(1), host.substr(dot));
    });
}

// "2026-11-22 09:30:00 UTC"
std::string readable(const std::string& time) {
    if (time.size() < 14) return time;
    const auto part = [&](std::size_t at) { return time.substr(at, 2); };
    return time.substr(0, 4) + "-" + part(4) + "-" + part(6) + " " + part(8) + ":" + part(10) +
           ":" + part(12) + " UTC";
}

std::string written(std::time_t time) {
    std::tm parts{};
    ::gmtime_r(&time, &parts);
    std::array<char, 32> text{};
    const std::size_t size = std::strftime(text.data(), text.size(), "%Y%m%d%H%M%SZ", &parts);
    return std::string(text.data(), size);
}

CertificateFault fault_of(const Certificate& certificate, const std::string& host,
                          std::time_t now) {
    const std::string today = written(now);
    if (today > certificate.end) return CertificateFault::has_expired;
    if (today < certificate.begin) return CertificateFault::is_not_valid_yet;
    return is_for(certificate, host) ? CertificateFault::issuer_unknown
                                     : CertificateFault::is_for_another_name;
}

std::string sentence_end(CertificateFault fault, const Certificate& certificate,
                         const std::string& host) {
    switch (fault) {
        case CertificateFault::has_expired:
            return "expired on " + readable(certificate.end) + ".";
        case CertificateFault::is_not_valid_yet:
            return "is not valid before " + readable(certificate.begin) + ".";
        case CertificateFault::issuer_unknown:
            return "is not trusted; it was issued by " + quoted_name(certificate.issuer) + ".";
        case CertificateFault::is_for_another_name:
            break;
    }
    std::string names;
    for (const std::string& name : certificate.names)
        names += (names.empty() ? "" : ", ") + quoted_name(name);
    return "is for " + names + ", not for " + quoted_name(host) + ".";
}

}  // namespace

std::string objection_to(std::string_view bytes, const std::string& host, std::time_t now) {
    const std::optional<Certificate> certificate = try_read(bytes);
    if (!certificate) return {};
    return "The server's certificate " + quoted_name(certificate->subject) + " " +
           sentence_end(fault_of(*certificate, host, now), *certificate, host);
}

}  // namespace orvo::directory::ldap::detail

namespace orvo::directory::ldap {

std::optional<CertificateWords> certificate_words(std::string_view certificate) {
    const auto read = detail::try_read(certificate);
    if (!read) return std::nullopt;
    return CertificateWords{read->subject, read->issuer, read->end};
}

std::optional<CertificateFault> fault_of(std::string_view certificate, const std::string& host,
                                         std::time_t now) {
    const auto read = detail::try_read(certificate);
    if (!read) return std::nullopt;
    return detail::fault_of(*read, host, now);
}

}  // namespace orvo::directory::ldap
