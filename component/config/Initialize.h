#pragma once

#include "component/config/PMMCreator.h"

namespace orvo {

// What a hosting server sets before it serves: the pool of connections and the cache of the
// directory provider. Making one loads the site's configuration into the thread's shared settings.
//
// Names and values are arrays of equal length whose meaning belongs to the provider; they are
// passed on untouched, and so are the provider's answers and failures, which are neither logged nor
// wrapped. Pool and cache are the process's; the object is for the thread that made it.
class Initialize {
public:
    Initialize();

    Boolean InitializeConnectionPool(Variant& i_aPoolParameterNames,
                                     Variant& i_aPoolParameterValues);
    Boolean InitializeCache(Variant& i_aCacheParameterNames, Variant& i_aCacheParameterValues);
};

// clang-format off
template <>
inline constexpr auto table_of<Initialize> = describe<Initialize>(
    "IInitialize", "6b0d9a7e-3c52-4f0b-9d2e-8a41c1f5e71a",
    about("Sets the provider's connection pool and cache up."),
    method<&Initialize::InitializeConnectionPool>("InitializeConnectionPool",
                                                  "i_aPoolParameterNames",
                                                  "i_aPoolParameterValues")
        .help("Changes the settings of the provider's connection pool: two arrays, of names and "
              "of values."),
    method<&Initialize::InitializeCache>("InitializeCache", "i_aCacheParameterNames",
                                         "i_aCacheParameterValues")
        .help("Changes the settings of the provider's cache: two arrays, of names and of "
              "values."));
// clang-format on

extern template struct detail::callee<Initialize>;

template <>
inline constexpr auto class_of<Initialize> =
    describe_class<Initialize>("OrvoMembership.Initialize", "6b0d9a7e-3c52-4f0b-9d2e-8a41c1f5e70a");

}  // namespace orvo
