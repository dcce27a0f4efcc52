# Components and include views: how the build holds every part of the tree to
# the layering it may use.
#
# A component's headers are included by the component's directory name
# ("Vel/Entity.h", "BfIngressMirrorLagGroup/table/...") from an include root.
# Instead of one root that shows everything, each component is compiled
# against a view of its own: a directory in the build tree holding links to
# the component itself and to the components it depends on, directly or not,
# and to nothing else. An include of anything outside that view does not
# compile.
#
#   mirrorlag_component(NAME DIR dir [DEPENDS component...] [HEADER_CHECK] [VIEW_ONLY])
#     Declares a component whose headers and sources are under `dir`. Unless
#     VIEW_ONLY (the caller then builds its sources itself, against the view), makes
#     the target `component_<NAME>`: an OBJECT library of the `dir`'s .cpp
#     files (their objects go into whichever shared library gathers them) or,
#     for a component of headers alone, an INTERFACE library. Either way it
#     brings the component's view to whatever links it. With HEADER_CHECK,
#     every header of `dir` is also compiled alone against the view, so that a
#     header that includes beyond its layering, or relies on what its includer
#     included before it, fails the build.
#
#   mirrorlag_component_view(VAR NAME)
#     Sets VAR to the directory of the view NAME (a component's, or one made
#     with mirrorlag_make_view).
#
#   mirrorlag_target_view(TARGET PRIVATE|PUBLIC|INTERFACE NAME)
#     Compiles TARGET through the view NAME.

set(MIRRORLAG_VIEWS_DIR ${PROJECT_BINARY_DIR}/include-views)

option(MIRRORLAG_HEADER_CHECK "Compile every component header alone against its layering" ON)

function(mirrorlag_component_view var name)
  set(${var} ${MIRRORLAG_VIEWS_DIR}/${name} PARENT_SCOPE)
endfunction()

# The component and everything it depends on, directly or not.
function(_mirrorlag_component_closure var name depends)
  set(closure ${name})
  foreach(dep IN LISTS depends)
    get_property(known GLOBAL PROPERTY MIRRORLAG_COMPONENT_CLOSURE_${dep} SET)
    if(NOT known)
      message(FATAL_ERROR "component ${name} depends on ${dep}, which is not declared before it")
    endif()
    get_property(dep_closure GLOBAL PROPERTY MIRRORLAG_COMPONENT_CLOSURE_${dep})
    list(APPEND closure ${dep_closure})
  endforeach()
  list(REMOVE_DUPLICATES closure)
  set(${var} ${closure} PARENT_SCOPE)
endfunction()

# Makes the view NAME: a directory of links, each `path` in the view leading to
# `target` (pairs path;target;path;target...). A file compiled through the
# view is still named by its own path in assertion texts and debug
# information: every target that uses the view maps each link back with
# -ffile-prefix-map.
function(mirrorlag_make_view name)
  set(view ${MIRRORLAG_VIEWS_DIR}/${name})
  file(REMOVE_RECURSE ${view})
  file(MAKE_DIRECTORY ${view})
  set(options)
  set(links ${ARGN})
  while(links)
    list(POP_FRONT links path target)
    get_filename_component(parent ${view}/${path} DIRECTORY)
    file(MAKE_DIRECTORY ${parent})
    file(CREATE_LINK ${target} ${view}/${path} SYMBOLIC)
    list(APPEND options -ffile-prefix-map=${view}/${path}=${target})
  endwhile()
  set_property(GLOBAL PROPERTY MIRRORLAG_VIEW_OPTIONS_${name} ${options})
endfunction()

# Compiles `target` (and, for PUBLIC or INTERFACE, what links it) through the
# view NAME.
function(mirrorlag_target_view target scope name)
  mirrorlag_component_view(view ${name})
  get_property(options GLOBAL PROPERTY MIRRORLAG_VIEW_OPTIONS_${name})
  target_include_directories(${target} ${scope} $<BUILD_INTERFACE:${view}>)
  foreach(option IN LISTS options)
    target_compile_options(${target} ${scope} $<BUILD_INTERFACE:${option}>)
  endforeach()
endfunction()

# One translation unit per header of `dir`, each including that header alone.
function(_mirrorlag_header_check name dir)
  file(GLOB_RECURSE headers CONFIGURE_DEPENDS RELATIVE ${dir} ${dir}/*.h)
  if(NOT headers)
    return()
  endif()
  set(units)
  foreach(header IN LISTS headers)
    string(MAKE_C_IDENTIFIER ${header} unit)
    set(unit ${PROJECT_BINARY_DIR}/header-check/${name}/${unit}.cpp)
    set(text "#include \"${name}/${header}\"\n")
    if(EXISTS ${unit})
      file(READ ${unit} old)
    endif()
    if(NOT old STREQUAL text)
      file(WRITE ${unit} ${text})
    endif()
    list(APPEND units ${unit})
  endforeach()
  add_library(component_${name}_headers OBJECT ${units})
  mirrorlag_target_view(component_${name}_headers PRIVATE ${name})
endfunction()

function(mirrorlag_component name)
  cmake_parse_arguments(arg "HEADER_CHECK;VIEW_ONLY" "DIR" "DEPENDS" ${ARGN})
  set_property(GLOBAL PROPERTY MIRRORLAG_COMPONENT_DIR_${name} ${arg_DIR})
  _mirrorlag_component_closure(closure ${name} "${arg_DEPENDS}")
  set_property(GLOBAL PROPERTY MIRRORLAG_COMPONENT_CLOSURE_${name} ${closure})
  set(links)
  foreach(component IN LISTS closure)
    get_property(dir GLOBAL PROPERTY MIRRORLAG_COMPONENT_DIR_${component})
    list(APPEND links ${component} ${dir})
  endforeach()
  mirrorlag_make_view(${name} ${links})

  if(arg_HEADER_CHECK AND MIRRORLAG_HEADER_CHECK)
    _mirrorlag_header_check(${name} ${arg_DIR})
  endif()
  if(arg_VIEW_ONLY)
    return()
  endif()
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${arg_DIR}/*.cpp)
  if(sources)
    add_library(component_${name} OBJECT ${sources})
    mirrorlag_target_view(component_${name} PUBLIC ${name})
  else()
    add_library(component_${name} INTERFACE)
    mirrorlag_target_view(component_${name} INTERFACE ${name})
  endif()
endfunction()
