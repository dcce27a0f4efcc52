// Vault sits on Vel: this include builds. It shows that the probes beside it
// fail for their includes alone.
#include "Vel/Ptr.h"
