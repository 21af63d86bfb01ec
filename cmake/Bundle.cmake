# krt9_make_bundle(TARGET): puts an executable into a bundle of macOS's layout, on both systems, with
# the information dictionary and the localized strings of resources/.
function(krt9_make_bundle target)
    set(resources ${CMAKE_SOURCE_DIR}/resources)
    configure_file(${resources}/Info.plist.in ${CMAKE_BINARY_DIR}/Info.plist @ONLY)
    file(GLOB strings CONFIGURE_DEPENDS RELATIVE ${resources} ${resources}/*.lproj/*)

    if(APPLE)
        set_target_properties(${target} PROPERTIES MACOSX_BUNDLE TRUE
                              MACOSX_BUNDLE_INFO_PLIST ${CMAKE_BINARY_DIR}/Info.plist)
        foreach(file ${strings})
            cmake_path(GET file PARENT_PATH folder)
            target_sources(${target} PRIVATE ${resources}/${file})
            set_source_files_properties(${resources}/${file} PROPERTIES
                                        MACOSX_PACKAGE_LOCATION Resources/${folder})
        endforeach()
        return()
    endif()

    set(contents ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/${target}.app/Contents)
    set_target_properties(${target} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${contents}/MacOS)
    configure_file(${CMAKE_BINARY_DIR}/Info.plist ${contents}/Info.plist COPYONLY)
    foreach(file ${strings})
        configure_file(${resources}/${file} ${contents}/Resources/${file} COPYONLY)
    endforeach()
endfunction()
