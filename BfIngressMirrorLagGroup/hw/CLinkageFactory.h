#pragma once

// The plug-in's factories are exported with C linkage, so that a host finds
// them by plain name with dlsym, yet they return the framework's counted
// references. Both ends are C++, so clang's warning about a C++ return type
// under C linkage does not apply; these brackets silence it around them.
#if defined(__clang__)
#define BF_C_LINKAGE_FACTORY_BEGIN \
  _Pragma("clang diagnostic push") _Pragma("clang diagnostic ignored \"-Wreturn-type-c-linkage\"")
#define BF_C_LINKAGE_FACTORY_END _Pragma("clang diagnostic pop")
#else
#define BF_C_LINKAGE_FACTORY_BEGIN
#define BF_C_LINKAGE_FACTORY_END
#endif
