// The typed client beside the platform's own headers: a program that knows nothing of the IDL.
//
//   typed-client SITE.INI SERVICE CODE

#include <orvo/membership.h>

#include <objbase.h>

#include <iostream>

namespace {

// Ends with the last object of the program.
struct Apartment {
    Apartment() { CoInitialize(nullptr); }
    ~Apartment() { CoUninitialize(); }
};

bool finds_who_has_the_role(const char* const* words) {
    orvo::Members members;
    members.setServerInfo(words[0]);
    members.BindAs(words[1], words[2]);
    for (auto row : members.GetOrvoMembersHavingRole(24, "sn"))
        if (row["cn"].to<std::string>() == "akilic" &&
            row["sn"].to<std::u16string>() == u"K\x0131l\x0131\x00E7")
            return true;
    std::cout << "akilic is not among those with the role\n";
    return false;
}

bool tells_what_failed(const char* site) {
    orvo::User nobody;
    nobody.setServerInfo(site);
    try {
        nobody.BindAs("nobody", "cn=nobody,o=Shop", "wrong");
    } catch (const orvo::Error& failure) {
        const std::string method = "METHOD: OrvoMembership.User.BindAs";
        if (static_cast<std::uint32_t>(failure.number()) == 0x8007052E &&
            failure.description().find(method) != std::string::npos)
            return true;
        std::cout << failure.what() << '\n';
        return false;
    }
    std::cout << "nobody is bound\n";
    return false;
}

}  // namespace

int main(int count, char** words) {
    if (count != 4) return 2;
    const Apartment apartment;
    if (!finds_who_has_the_role(words + 1) || !tells_what_failed(words[1])) return 1;
    std::cout << "passed\n";
    return 0;
}
