# What is installed where. The library lies in a folder of its own, LMF_INSTALL_FOLDER, with everything that it looks
# for beside itself; links in the folder of all libraries lead to it. Three components: runtime, faces (the face finder,
# which needs OpenCV; see finder/) and development.
include(CMakePackageConfigHelpers)
# Installing takes what is there and builds nothing, tests least of all.
set(CMAKE_SKIP_INSTALL_ALL_DEPENDENCY ON)
set(LMF_CMAKE_FOLDER ${CMAKE_INSTALL_LIBDIR}/cmake/LumenfoldFilters)

install(TARGETS lmf RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime)
install(TARGETS lmf16text lmf_metadata LIBRARY DESTINATION ${LMF_INSTALL_FOLDER} COMPONENT runtime)
install(FILES ${LMF_LIBRARY_FILES} ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/DauberyPhotographyDarkroom.txt
  DESTINATION ${LMF_INSTALL_FOLDER} COMPONENT runtime)
install(TARGETS lmf16filter EXPORT LumenfoldFilters
  LIBRARY DESTINATION ${LMF_INSTALL_FOLDER} COMPONENT runtime NAMELINK_SKIP)
install(TARGETS lmf16block EXPORT LumenfoldFilters
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development)
get_filename_component(folder ${LMF_INSTALL_FOLDER} NAME)
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/gen/links)
file(CREATE_LINK ${folder}/liblmf16filter.so.1 ${CMAKE_BINARY_DIR}/gen/links/liblmf16filter.so.1 SYMBOLIC)
file(CREATE_LINK ${folder}/liblmf16filter.so.1 ${CMAKE_BINARY_DIR}/gen/links/liblmf16filter.so SYMBOLIC)
install(FILES ${CMAKE_BINARY_DIR}/gen/links/liblmf16filter.so.1
  DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime)

install(FILES ${CMAKE_BINARY_DIR}/gen/links/liblmf16filter.so
  DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
install(FILES include/lmf16filter.h include/lmf16block.h include/lmf16finder.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)
file(RELATIVE_PATH LMF_PREFIX_FROM_PKGCONFIG /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(cmake/lmf16filter.pc.in gen/lmf16filter.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/gen/lmf16filter.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
install(EXPORT LumenfoldFilters FILE LumenfoldFiltersConfig.cmake NAMESPACE Lumenfold::
  DESTINATION ${LMF_CMAKE_FOLDER} COMPONENT development)
write_basic_package_version_file(gen/LumenfoldFiltersConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/gen/LumenfoldFiltersConfigVersion.cmake
  DESTINATION ${LMF_CMAKE_FOLDER} COMPONENT development)

# One Debian package a component; each carries the licence, as that system wants it.
set(CPACK_GENERATOR DEB)
set(CPACK_COMPONENTS_ALL runtime development)
set(CPACK_PACKAGE_NAME lumenfold-filters)
set(CPACK_PACKAGE_CONTACT "the Lumenfold Filters authors <lumenfold-filters@localhost>")
set(CPACK_RESOURCE_FILE_LICENSE ${CMAKE_SOURCE_DIR}/LICENSE)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS OFF)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(same_version "(= ${PROJECT_VERSION})")

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME lumenfold-filters)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_RECOMMENDS "fonts-dejavu-core, fonts-liberation")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SUGGESTS lumenfold-filters-faces)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "image filters for programs and for the command line
A library of image filters that programs load and call through eleven C
functions, and lmf, which applies them to picture files.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME lumenfold-filters-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "lumenfold-filters ${same_version}, libc6-dev")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "image filters for programs, development files
Headers of the filter library, and what pkg-config and CMake need to find it.")

set(CPACK_DEBIAN_FACES_PACKAGE_NAME lumenfold-filters-faces)
set(CPACK_DEBIAN_FACES_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_FACES_PACKAGE_DEPENDS "lumenfold-filters ${same_version}")
set(CPACK_COMPONENT_FACES_DESCRIPTION "image filters for programs, face finder
What the filters Face Detection and Red-eye Reduction find faces with.")
if(TARGET cv_x64)
  list(APPEND CPACK_COMPONENTS_ALL faces)
endif()

foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER ${component} upper)
  install(FILES LICENSE RENAME copyright COMPONENT ${component}
    DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
endforeach()
include(CPack)
