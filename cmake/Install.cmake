include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

install(TARGETS qxfb_core EXPORT QxFBCom2Targets
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/qxfbcom2)
set_target_properties(QxFBCom2 PROPERTIES EXPORT_NAME component)
install(TARGETS QxFBCom2 EXPORT QxFBCom2Targets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
# The runtime model needs nothing beyond the core, so it travels with it.
install(TARGETS qxfb_runtime_model EXPORT QxFBCom2Targets ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
# So does the link library: Asio is inside it, its header is standard C++.
install(TARGETS qxfb_link EXPORT QxFBCom2Targets ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
# The schema of the text form of message sets goes with the package's data.
install(FILES ${CMAKE_SOURCE_DIR}/resources/schema/qxfbcom2-message-set.v1.schema.json
        DESTINATION ${CMAKE_INSTALL_DATADIR}/${PROJECT_NAME}/schema)
# Three public frames as Send and Scan sets in the text form, for preview,
# loopback and decode.
install(DIRECTORY ${CMAKE_SOURCE_DIR}/resources/examples/frames
        DESTINATION ${CMAKE_INSTALL_DATADIR}/${PROJECT_NAME}/examples)
install(TARGETS qxfb RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
# The project store and the view layer, each in an export set of its own, so
# that the package's config file loads them (and looks for SQLite, OpenSSL
# and Qt) only for the programs that want them. Their headers include only
# headers installed below; the .ui-generated ones stay inside qxfb_qt.
install(TARGETS qxfb_project EXPORT QxFBCom2ProjectTargets ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(EXPORT QxFBCom2ProjectTargets NAMESPACE QxFBCom2:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/QxFBCom2)
if(TARGET qxfb_qt)
  install(TARGETS qxfb_qt EXPORT QxFBCom2QtTargets ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
  install(EXPORT QxFBCom2QtTargets NAMESPACE QxFBCom2:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/QxFBCom2)
endif()
install(DIRECTORY ${CMAKE_SOURCE_DIR}/src/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/qxfbcom2
        FILES_MATCHING PATTERN "*.h")
# The runtime folder: bin/, the application folder of an installed component,
# and FB_Lib/RT/, the runtime files of the families. The component finds it
# relative to its own library (src/CMakeLists.txt).
install(DIRECTORY ${CMAKE_SOURCE_DIR}/runtime/bin ${CMAKE_SOURCE_DIR}/runtime/FB_Lib
        DESTINATION ${CMAKE_INSTALL_DATADIR}/${PROJECT_NAME})
# The generated umbrella header (cmake/Umbrella.cmake).
install(FILES ${QXFB_UMBRELLA_HEADER} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/qxfbcom2)
install(EXPORT QxFBCom2Targets NAMESPACE QxFBCom2:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/QxFBCom2)
configure_package_config_file(${CMAKE_SOURCE_DIR}/cmake/QxFBCom2Config.cmake.in
  ${CMAKE_BINARY_DIR}/QxFBCom2Config.cmake INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/QxFBCom2)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/QxFBCom2ConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/QxFBCom2Config.cmake ${CMAKE_BINARY_DIR}/QxFBCom2ConfigVersion.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/QxFBCom2)
# The desktop host, when the view layer is built.
if(TARGET qxfb-workbench)
  install(TARGETS qxfb-workbench RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()
