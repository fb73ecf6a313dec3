# Highway's headers. They are the same on every platform, so the cross builds use the system's copy, made reachable
# alone: the rest of /usr/include must not leak into them.
find_path(ZORJ_HIGHWAY_INCLUDE hwy/highway.h PATHS /usr/include NO_CMAKE_FIND_ROOT_PATH REQUIRED)
set(highway_headers ${CMAKE_BINARY_DIR}/highway/include)
file(MAKE_DIRECTORY ${highway_headers})
file(CREATE_LINK ${ZORJ_HIGHWAY_INCLUDE}/hwy ${highway_headers}/hwy SYMBOLIC)

add_library(zorj_highway INTERFACE)
target_include_directories(zorj_highway SYSTEM INTERFACE ${highway_headers})
