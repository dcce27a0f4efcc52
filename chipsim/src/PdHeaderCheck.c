/* Compiles the PD header as strict C99, as a C host includes it. */
#include <Pd/KestroSwitchPd.h>
#include <Pd/KestroSwitchPdFunctions.h>
#include <Pd/PipeStatus.h>

/* The device target travels by value as two 32-bit words. */
typedef char pd_device_target_is_two_words[sizeof(p4_pd_device_target_t) == 8 ? 1 : -1];
