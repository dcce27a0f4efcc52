// The plug-in reaches the chip only through the platform's PD interface
// object: this include must not build.
#include "chipsim/chipsim.h"
