#include "host/ChipProbe.h"

#include "chipsim/chipsim.h"
#include "host/LibrarySymbol.h"

namespace mirrorlag_agent {

ChipProbe::ChipProbe(void* pdLib) {
  findSymbol(pdLib, "chipsim_check", check_);
  findSymbol(pdLib, "chipsim_entries", entries_);
  findSymbol(pdLib, "chipsim_members", members_);
  findSymbol(pdLib, "chipsim_groups", groups_);
  findSymbol(pdLib, "chipsim_lookup", lookup_);
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
