#include "host/ChipProbe.h"

#include <dlfcn.h>

#include "chipsim/chipsim.h"

namespace mirrorlag_agent {

namespace {

// The function `name` of the library, as a pointer of the type `F` points to;
// null when the library has none.
template <class F>
void find(void* library, const char* name, F& function) {
  function = reinterpret_cast<F>(dlsym(library, name));
}

}  // namespace

ChipProbe::ChipProbe(void* pdLib) {
  find(pdLib, "chipsim_check", check_);
  find(pdLib, "chipsim_entries", entries_);
  find(pdLib, "chipsim_members", members_);
  find(pdLib, "chipsim_groups", groups_);
  find(pdLib, "chipsim_lookup", lookup_);
  if (!entries_ || !members_ || !groups_ || !lookup_)
    check_ = nullptr;
}

std::optional<std::string> ChipProbe::fault() const {
  const char* fault = check_();
  return fault == nullptr ? std::nullopt : std::optional<std::string>(fault);
}

std::optional<ChipProbe::Lookup> ChipProbe::lookup(std::uint16_t session,
                                                   std::uint32_t hash) const {
  Lookup result;
  const int status = lookup_(session, hash, &result.selector);
  if (status != 0 && status != CHIPSIM_DEFAULT_HIT)
    return std::nullopt;
  result.byDefault = status == CHIPSIM_DEFAULT_HIT;
  return result;
}

}  // namespace mirrorlag_agent
