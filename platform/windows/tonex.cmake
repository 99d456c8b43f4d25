# The product: one static program on floors 1 to 6. Included by this folder's CMakeLists.txt.
set(TONEX_ICON "${CMAKE_BINARY_DIR}/tonex.ico" CACHE FILEPATH "Program icon, made from the outlines by tools/pictures")
configure_file(${CMAKE_CURRENT_LIST_DIR}/tonex.rc.in ${CMAKE_CURRENT_BINARY_DIR}/tonex.rc @ONLY)
set_source_files_properties(${CMAKE_CURRENT_BINARY_DIR}/tonex.rc PROPERTIES
    OBJECT_DEPENDS "${CMAKE_SOURCE_DIR}/resources/tonex.manifest;${TONEX_ICON}")

# The icon is drawn by a program of the build machine, not of Windows.
find_program(HOST_CXX NAMES g++ c++ REQUIRED)
file(GLOB picture_sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/pictures/*.cpp)
set(make_icon ${CMAKE_SOURCE_DIR}/tools/pictures/make_icon.cpp)
if(EXISTS ${make_icon})
    add_custom_command(
        OUTPUT ${TONEX_ICON}
        COMMAND ${HOST_CXX} -std=c++20 -O1 -I${CMAKE_SOURCE_DIR} ${make_icon} ${picture_sources}
                -o ${CMAKE_BINARY_DIR}/make_icon
        COMMAND ${CMAKE_BINARY_DIR}/make_icon ${TONEX_ICON}
        DEPENDS ${make_icon} ${picture_sources}
        COMMENT "Drawing the program icon" VERBATIM)
endif()

add_executable(Tonex WIN32
    win_main.cpp main_window.cpp main_window_services.cpp menu_and_toolbar.cpp keyboard_routes.cpp
    panel.cpp staff_panel.cpp grid_panel.cpp length_panel.cpp piano_panel.cpp accessible.cpp
    canvas.cpp theme.cpp dialogs.cpp ${CMAKE_CURRENT_BINARY_DIR}/tonex.rc)
target_compile_definitions(Tonex PRIVATE TONEX_VERSION=L"${PROJECT_VERSION}")
target_compile_options(Tonex PRIVATE $<$<COMPILE_LANGUAGE:CXX>:-Wall -Wextra -Werror -Werror=return-type>)
target_link_options(Tonex PRIVATE -municode -s)
target_link_libraries(Tonex PRIVATE tonex_commands tonex_windows_desktop tonex_windows_files tonex_commands
                      tonex_rules comctl32 gdi32 user32 shell32 advapi32)
# The player stands in the same folder: a preview finds it there first.
add_dependencies(Tonex sndrec32)
