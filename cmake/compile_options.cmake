# What every target of the project is compiled with.
add_library(zorj_options INTERFACE)
target_compile_features(zorj_options INTERFACE cxx_std_20)
target_compile_options(zorj_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow)

if(ZORJ_SANITIZE)
  target_compile_options(zorj_options INTERFACE -fsanitize=${ZORJ_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(zorj_options INTERFACE -fsanitize=${ZORJ_SANITIZE})
endif()

if(ZORJ_COVERAGE)
  target_link_options(zorj_options INTERFACE -fprofile-instr-generate) # what is compiled so is linked everywhere
endif()

if(CMAKE_SIZEOF_VOID_P EQUAL 4)
  # x87 arithmetic would give other floats; callers may bring a stack aligned to 4 bytes only.
  target_compile_options(zorj_options INTERFACE -msse2 -mfpmath=sse -mstackrealign)
endif()

# What the libraries add to it.
add_library(zorj_library_options INTERFACE)
target_link_libraries(zorj_library_options INTERFACE zorj_options)
target_compile_options(
  zorj_library_options INTERFACE -ffp-contract=off -fno-math-errno -fvisibility=hidden
                                 $<$<COMPILE_LANGUAGE:CXX>:-fno-exceptions -fno-rtti -fvisibility-inlines-hidden>)
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
  # Highway switches AVX2 off in 32-bit builds unless told which targets are really broken there.
  target_compile_definitions(zorj_library_options INTERFACE "HWY_BROKEN_TARGETS=(HWY_AVX3|HWY_AVX3_DL)")
endif()

if(ZORJ_COVERAGE)
  target_compile_options(zorj_library_options INTERFACE -fprofile-instr-generate -fcoverage-mapping)
endif()

# The same bytes wherever the source lies: no path of this machine in the libraries or their debug information.
target_compile_options(zorj_library_options INTERFACE -ffile-prefix-map=${PROJECT_SOURCE_DIR}=.
                                                      -ffile-prefix-map=${CMAKE_BINARY_DIR}=./build)
if(WIN32)
  target_link_options(zorj_library_options INTERFACE -Wl,--no-insert-timestamp,--dynamicbase,--nxcompat)
else()
  target_link_options(zorj_library_options INTERFACE -Wl,-z,relro,-z,now,-z,noexecstack,-z,separate-code -Wl,--as-needed)
endif()

# Hardening that costs nothing in the kernels; the sanitizers bring their own checks.
if(NOT WIN32 AND NOT ZORJ_SANITIZE AND NOT ZORJ_COVERAGE)
  target_compile_options(zorj_library_options INTERFACE -fstack-protector-strong -fstack-clash-protection -fcf-protection
                                                        -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
endif()

# OpenMP for the row-parallel loops. By the compiler's flag rather than by FindOpenMP's library paths, which would link
# the DLL of it on Windows although everything else there is static.
add_library(zorj_openmp INTERFACE)
target_compile_options(zorj_openmp INTERFACE -fopenmp)
target_link_options(zorj_openmp INTERFACE -fopenmp)
