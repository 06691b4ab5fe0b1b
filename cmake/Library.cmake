# SPDX-License-Identifier: MIT
# libplexor: the engine for other programs, shared and static, with its headers.
file(GLOB library_sources CONFIGURE_DEPENDS src/library/*.cpp)
file(GLOB library_headers CONFIGURE_DEPENDS include/plexor/*.h)

add_library(plexor_library SHARED ${library_sources} $<TARGET_OBJECTS:plexor_engine>)
add_library(plexor_static STATIC ${library_sources} $<TARGET_OBJECTS:plexor_engine>)
foreach(library plexor_library plexor_static)
    target_include_directories(${library}
        PRIVATE src ${CMAKE_CURRENT_BINARY_DIR}/generated
        PUBLIC $<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}/include>)
    target_link_libraries(${library}
        PRIVATE $<BUILD_INTERFACE:plexor_options> $<BUILD_INTERFACE:plexor_hardening>)
    target_compile_features(${library} PUBLIC cxx_std_20)
    target_sources(${library} PUBLIC FILE_SET HEADERS BASE_DIRS include FILES ${library_headers})
    set_target_properties(${library} PROPERTIES
        OUTPUT_NAME plexor
        POSITION_INDEPENDENT_CODE ON
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON
        # Each public header must compile alone: the target all_verify_interface_header_sets.
        VERIFY_INTERFACE_HEADER_SETS ON)
endforeach()
set_target_properties(plexor_library PROPERTIES
    EXPORT_NAME plexor VERSION ${PROJECT_VERSION} SOVERSION 0)
set_target_properties(plexor_static PROPERTIES EXPORT_NAME plexor_static)
# What a program needs must be in the library itself; only the sanitizers' part is the program's.
if(NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize=")
    target_link_options(plexor_library PRIVATE LINKER:--no-undefined)
endif()

# --- Installation: the library a package, what building against it needs another. ---
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

install(TARGETS plexor_library EXPORT plexor_targets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        COMPONENT libplexor0 NAMELINK_COMPONENT libplexor-dev
    FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT libplexor-dev)
install(TARGETS plexor_static EXPORT plexor_targets
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT libplexor-dev
    FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT libplexor-dev)

set(plexor_cmake_dir ${CMAKE_INSTALL_LIBDIR}/cmake/plexor)
install(EXPORT plexor_targets NAMESPACE plexor:: FILE plexorConfig.cmake
    DESTINATION ${plexor_cmake_dir} COMPONENT libplexor-dev)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/generated/plexorConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/generated/plexorConfigVersion.cmake
    DESTINATION ${plexor_cmake_dir} COMPONENT libplexor-dev)

file(RELATIVE_PATH plexor_pc_to_prefix /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" plexor_pc_to_prefix ${plexor_pc_to_prefix})
configure_file(packaging/library/plexor.pc.in generated/plexor.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/generated/plexor.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT libplexor-dev)
