# What an installation holds: program, sample cases, companions, menu entry, icons, manual pages, documents.
set(FLUVANE_RELEASE_DATE 2026-11-21)
set(FLUVANE_RELEASE_TIME "Sat, 21 Nov 2026 12:00:00 +0000")
set(FLUVANE_PACKAGE_MAINTAINER "Fluvane developers <developers@fluvane.invalid>" CACHE STRING
  "Who answers for packages, as name and address; no public address exists")

set(data_dir ${CMAKE_INSTALL_DATADIR}/fluvane)
set(tools_dir ${data_dir}/tools)
set(doc_dir ${CMAKE_INSTALL_DATADIR}/doc/fluvane)
set(packaging ${PROJECT_SOURCE_DIR}/packaging)
set(made ${PROJECT_BINARY_DIR}/packaging)

# Written once, at configuring: a page whose text changes is configured anew by the build itself.
find_program(GZIP_PROGRAM gzip)
function(fluvane_install_compressed template name destination)
  configure_file(${template} ${made}/${name} @ONLY)
  if(GZIP_PROGRAM)
    execute_process(COMMAND ${GZIP_PROGRAM} -9 -n -k -f ${made}/${name} COMMAND_ERROR_IS_FATAL ANY)
    install(FILES ${made}/${name}.gz DESTINATION ${destination})
  else()
    install(FILES ${made}/${name} DESTINATION ${destination})
  endif()
endfunction()

install(TARGETS fluvane RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
fluvane_install_compressed(${packaging}/man/fluvane.1.in fluvane.1 ${CMAKE_INSTALL_MANDIR}/man1)

# Only what the cases consist of: who starts the program in their folder leaves dumps and results there.
install(DIRECTORY cases/ DESTINATION ${data_dir}/cases FILES_MATCHING
  PATTERN "*.msh" PATTERN "*.2Dv" PATTERN "*.3Dv" PATTERN "*.md")

# The companions are scripts; their modules and packages of modules lie beside them.
file(GLOB companions CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tools/fluvane-*)
list(FILTER companions INCLUDE REGEX "/fluvane-[a-z]+$")
file(GLOB modules CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tools/*.py)
list(FILTER modules EXCLUDE REGEX "/(measure_speed|speed_tables|make_sample_meshes)\\.py$")
file(GLOB module_folders LIST_DIRECTORIES true CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tools/fluvane_*)

install(FILES ${modules} DESTINATION ${tools_dir})
install(PROGRAMS tools/make_sample_meshes.py ${companions} DESTINATION ${tools_dir})
install(DIRECTORY ${module_folders} DESTINATION ${tools_dir} PATTERN "__pycache__" EXCLUDE)

file(RELATIVE_PATH tools_from_bin ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_DATADIR}/fluvane/tools)
foreach(path IN LISTS companions)
  get_filename_component(companion ${path} NAME)
  configure_file(${packaging}/launcher.sh.in ${made}/${companion} @ONLY)
  install(PROGRAMS ${made}/${companion} DESTINATION ${CMAKE_INSTALL_BINDIR})
  if(EXISTS ${packaging}/man/${companion}.1.in)
    fluvane_install_compressed(${packaging}/man/${companion}.1.in ${companion}.1 ${CMAKE_INSTALL_MANDIR}/man1)
  endif()
endforeach()

install(FILES packaging/org.fluvane.Fluvane.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
configure_file(${packaging}/org.fluvane.Fluvane.metainfo.xml.in ${made}/org.fluvane.Fluvane.metainfo.xml @ONLY)
install(FILES ${made}/org.fluvane.Fluvane.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)

set(icons_dir ${CMAKE_INSTALL_DATADIR}/icons/hicolor)
install(FILES packaging/icons/org.fluvane.Fluvane.svg DESTINATION ${icons_dir}/scalable/apps)
foreach(size IN ITEMS 16 22 24 32 48 64 128 256 512)
  install(FILES packaging/icons/${size}x${size}/org.fluvane.Fluvane.png
    DESTINATION ${icons_dir}/${size}x${size}/apps)
endforeach()

# The documents keep their places to one another, so that their links work.
file(GLOB documents CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/*.md)
install(FILES ${documents} packaging/copyright DESTINATION ${doc_dir})
install(FILES tools/README.md DESTINATION ${doc_dir}/tools OPTIONAL)
install(DIRECTORY docs DESTINATION ${doc_dir})
file(CREATE_LINK ../../fluvane/cases ${made}/cases SYMBOLIC)
install(FILES ${made}/cases DESTINATION ${doc_dir})
fluvane_install_compressed(${packaging}/changelog.in changelog ${doc_dir})
