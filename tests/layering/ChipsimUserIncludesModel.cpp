// A user of the chip model sees chipsim.h and the PD header, not the model's
// own sources: this include must not build.
#include "chipsim/src/Chip.h"
