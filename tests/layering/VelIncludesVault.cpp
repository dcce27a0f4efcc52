// Vel sits below Vault: this include must not build.
#include "Vault/TableView.h"
