# How the programs are compiled and linked. A build without a type is a Release, and only that adds flags for speed and
# safety; CMAKE_BUILD_TYPE=None leaves all of them to CMAKE_CXX_FLAGS. What a compiler or linker does not know is left
# out.
include(CheckCXXCompilerFlag)
include(CheckIPOSupported)
include(CheckCXXSourceCompiles)
include(CheckLinkerFlag)

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
if(NOT KILN_PLAYGROUND)
  set(CMAKE_POSITION_INDEPENDENT_CODE ON)
endif()
if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release)
endif()
if(EMSCRIPTEN AND NOT KILN_PLAYGROUND)
  # One module that reads and writes files with Node. Running out of memory is an exception.
  add_compile_options(-fexceptions)
  add_link_options(-fexceptions -sNODERAWFS -sSINGLE_FILE -sEXIT_RUNTIME -sALLOW_MEMORY_GROWTH -sMAXIMUM_MEMORY=4GB
    "SHELL:--pre-js ${CMAKE_SOURCE_DIR}/src/host/node_environment.js")
endif()
if(WIN32)
  add_compile_definitions(UNICODE _UNICODE WIN32_LEAN_AND_MEAN NOMINMAX)
elseif(CMAKE_SIZEOF_VOID_P EQUAL 4)
  add_compile_definitions(_FILE_OFFSET_BITS=64)
endif()

# A name that is unique over all libraries of a process could not be hidden in libkiln.
check_cxx_compiler_flag(-fno-gnu-unique hasNoGnuUnique)
if(hasNoGnuUnique)
  add_compile_options(-fno-gnu-unique)
endif()

if(CMAKE_BUILD_TYPE STREQUAL "Release")
  # One optimisation over all files: the passes call small functions of other files once per line.
  check_ipo_supported(RESULT hasIpo OUTPUT ignored LANGUAGES CXX)
  set(CMAKE_INTERPROCEDURAL_OPTIMIZATION ${hasIpo})
  if(hasIpo AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    set(CMAKE_CXX_COMPILE_OPTIONS_IPO -flto=auto -fno-fat-lto-objects)
    set(CMAKE_CXX_LINK_OPTIONS_IPO -flto=auto)
  endif()

  # By itself, GCC leaves small functions of the passes as calls, which costs a sixth of the time.
  set(inlining --param=max-inline-insns-auto=80 --param=inline-unit-growth=200 --param=large-function-growth=1000)
  set(CMAKE_REQUIRED_FLAGS -Werror)  # clang++ ignores them with a warning
  check_cxx_compiler_flag("${inlining}" hasInlining)
  unset(CMAKE_REQUIRED_FLAGS)
  if(hasInlining)
    add_compile_options(${inlining})
    add_link_options(${inlining})
  endif()

  # The programs read what anybody may have written. Some compilers need a library for these checks, which is not always
  # there.
  if(NOT "${CMAKE_CXX_FLAGS}" MATCHES "FORTIFY_SOURCE|stack-protector")
    set(CMAKE_REQUIRED_FLAGS "-fstack-protector-strong -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2 -O2")
    check_cxx_source_compiles("#include <cstring>
      int main(int, char** argv) { char copy[9]; std::strcpy(copy, argv[0]); return copy[0]; }" hasRunTimeChecks)
    unset(CMAKE_REQUIRED_FLAGS)
  endif()
  if(hasRunTimeChecks)
    add_compile_options(-fstack-protector-strong -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
    # Some linkers add a library for it.
    add_link_options(-fstack-protector-strong)
  endif()
  check_linker_flag(CXX -Wl,-z,relro,-z,now hasReadOnlyTables)
  if(hasReadOnlyTables)
    add_link_options(-Wl,-z,relro,-z,now)
  endif()

  # The same sources make the same programs in any folder.
  check_cxx_compiler_flag(-ffile-prefix-map=here=there hasPrefixMap)
  if(hasPrefixMap)
    add_compile_options("-ffile-prefix-map=${CMAKE_SOURCE_DIR}=.")
  endif()

  # Without shared libraries to find and bind, a program starts in half the time.
  if(KILN_STATIC)
    set(staticFlags -static-pie -static)
    if(WIN32)
      set(staticFlags -static)
    endif()
    foreach(flag ${staticFlags})
      string(MAKE_C_IDENTIFIER "has${flag}" has)
      check_linker_flag(CXX ${flag} ${has})
      if(${has})
        set(staticFlag ${flag})
        break()
      endif()
    endforeach()
    # The library's functions that nobody calls: a twentieth of a program's size and start.
    check_linker_flag(CXX -Wl,--gc-sections hasUnusedSections)
  endif()
endif()

# linkStatically(PROGRAM): as far as KILN_STATIC and the compiler allow it.
function(linkStatically program)
  if(staticFlag)
    target_link_options(${program} PRIVATE ${staticFlag} $<$<BOOL:${hasUnusedSections}>:-Wl,--gc-sections>)
  endif()
endfunction()
