#include "support/ChipsimLibrary.h"

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>

namespace chipsim_test {

namespace {

class Loader {
 public:
  Loader() : handle_(dlopen(CHIPSIM_LIBRARY, RTLD_NOW | RTLD_LOCAL)) {
    if (handle_ == nullptr) {
      std::fprintf(stderr, "cannot load %s: %s\n", CHIPSIM_LIBRARY, dlerror());
      std::abort();
    }
  }

  template <class F>
  void resolve(F& function, const char* name) {
    function = reinterpret_cast<F>(dlsym(handle_, name));
    if (function == nullptr) {
      std::fprintf(stderr, "%s has no %s\n", CHIPSIM_LIBRARY, name);
      std::abort();
    }
  }

 private:
  void* handle_;
};

ChipsimLibrary load() {
  Loader loader;
  ChipsimLibrary lib{};
  loader.resolve(lib.addEntry, "p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry");
  loader.resolve(lib.addEntryWithSelector,
                 "p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry_with_selector");
  loader.resolve(lib.modifyEntry, "p4_pd_kestro_switch_ingressMirrorLagGroup_modify_entry");
  loader.resolve(lib.modifyEntryWithSelector,
                 "p4_pd_kestro_switch_ingressMirrorLagGroup_modify_entry_with_selector");
  loader.resolve(lib.setDefaultEntry,
                 "p4_pd_kestro_switch_ingressMirrorLagGroup_set_default_entry");
  loader.resolve(lib.setDefaultEntryWithSelector,
                 "p4_pd_kestro_switch_ingressMirrorLagGroup_set_default_entry_with_selector");
  loader.resolve(lib.tableDelete, "p4_pd_kestro_switch_ingressMirrorLagGroup_table_delete");
  loader.resolve(lib.tableResetDefaultEntry,
                 "p4_pd_kestro_switch_ingressMirrorLagGroup_table_reset_default_entry");
  loader.resolve(lib.setProperty, "p4_pd_kestro_switch_ingressMirrorLagGroup_set_property");
  loader.resolve(lib.getEntry, "p4_pd_kestro_switch_ingressMirrorLagGroup_get_entry");
  loader.resolve(lib.matchSpecToEntryHdl,
                 "p4_pd_kestro_switch_ingressMirrorLagGroup_match_spec_to_entry_hdl");
  loader.resolve(
      lib.addMember,
      "p4_pd_kestro_switch_mirrorLagPortActionProfile_add_member_with_setLagMemberSelector");
  loader.resolve(
      lib.modifyMember,
      "p4_pd_kestro_switch_mirrorLagPortActionProfile_modify_member_with_setLagMemberSelector");
  loader.resolve(lib.delMember, "p4_pd_kestro_switch_mirrorLagPortActionProfile_del_member");
  loader.resolve(lib.createGroup, "p4_pd_kestro_switch_mirrorLagPortActionProfile_create_group");
  loader.resolve(lib.delGroup, "p4_pd_kestro_switch_mirrorLagPortActionProfile_del_group");
  loader.resolve(lib.addMemberToGroup,
                 "p4_pd_kestro_switch_mirrorLagPortActionProfile_add_member_to_group");
  loader.resolve(lib.delMemberFromGroup,
                 "p4_pd_kestro_switch_mirrorLagPortActionProfile_del_member_from_group");
  loader.resolve(lib.groupMemberStateSet,
                 "p4_pd_kestro_switch_mirrorLagPortActionProfile_group_member_state_set");
  loader.resolve(lib.getFirstMember,
                 "p4_pd_kestro_switch_mirrorLagPortActionProfile_get_first_member");
  loader.resolve(lib.getNextMember,
                 "p4_pd_kestro_switch_mirrorLagPortActionProfile_get_next_member");
  loader.resolve(lib.getFirstGroup,
                 "p4_pd_kestro_switch_mirrorLagPortActionProfile_get_first_group");
  loader.resolve(lib.getNextGroup, "p4_pd_kestro_switch_mirrorLagPortActionProfile_get_next_group");
  loader.resolve(lib.configDefault, "chipsim_config_default");
  loader.resolve(lib.configure, "chipsim_configure");
  loader.resolve(lib.configGet, "chipsim_config_get");
  loader.resolve(lib.attach, "chipsim_attach");
  loader.resolve(lib.attachExisting, "chipsim_attach_existing");
  loader.resolve(lib.unlink, "chipsim_unlink");
  loader.resolve(lib.name, "chipsim_name");
  loader.resolve(lib.reset, "chipsim_reset");
  loader.resolve(lib.failNext, "chipsim_fail_next");
  loader.resolve(lib.calls, "chipsim_calls");
  loader.resolve(lib.entries, "chipsim_entries");
  loader.resolve(lib.members, "chipsim_members");
  loader.resolve(lib.groups, "chipsim_groups");
  loader.resolve(lib.lookupOnPipe, "chipsim_lookup_on_pipe");
  loader.resolve(lib.lookup, "chipsim_lookup");
  loader.resolve(lib.logCount, "chipsim_log_count");
  loader.resolve(lib.logLine, "chipsim_log_line");
  loader.resolve(lib.logClear, "chipsim_log_clear");
  loader.resolve(lib.dump, "chipsim_dump");
  loader.resolve(lib.check, "chipsim_check");
  loader.resolve(lib.examine, "chipsim_examine");
  loader.resolve(lib.lastFault, "chipsim_last_fault");
  loader.resolve(lib.holdLockForTest, "chipsim_hold_lock_for_test");
  loader.resolve(lib.killAfterChangesForTest, "chipsim_kill_after_changes_for_test");
  return lib;
}

}  // namespace

const ChipsimLibrary& chipsim() {
  static const ChipsimLibrary lib = load();
  return lib;
}

}  // namespace chipsim_test
