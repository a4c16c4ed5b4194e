// Lists the users who have a role, their own or their profile's.
//
//   ORVO_SERVICE_CODE=… role-list SITE.INI SERVICE ROLE
//
// The password of the service account comes from the environment.

#include <orvo/membership.h>

#include <cstdlib>
#include <iostream>

int main(int count, char** words) {
    const char* code = std::getenv("ORVO_SERVICE_CODE");
    if (count != 4 || !code) {
        std::cerr << "usage: ORVO_SERVICE_CODE=… role-list SITE.INI SERVICE ROLE\n";
        return 2;
    }
    try {
        orvo::Members members;
        members.setServerInfo(words[1]);
        members.BindAs(words[2], code);
        for (auto row : members.GetOrvoMembersHavingRole(std::atoi(words[3]), "sn"))
            std::cout << row["cn"] << '\t' << row["sn"] << '\n';
        return 0;
    } catch (const orvo::Error& failure) {
        std::cerr << failure.what() << '\n';
        return 1;
    }
}
