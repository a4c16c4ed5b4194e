#pragma once

#include <string>

namespace orvo {

// What plain COM sources include: the interfaces as abstract classes under the platform's names,
// with the identifiers of interfaces, classes and libraries. The texts are committed as
// client/com/OrvoMembership.h and client/com/TavikPMMInterfaces.h, which the first one includes.
std::string component_com_header();
std::string provider_com_header();

}  // namespace orvo
