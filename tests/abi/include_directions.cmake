# Checks that calls run one way, core <- kinematics' own headers <- pose <- solve <- trajectory <-
# tools and examples, and that nothing but solve, tools and the solver knows the solver's interface.
#   cmake -DSOURCE_DIR=... -P include_directions.cmake

# What the files that match the first expression may include, files' own folder left out.
set(rules
    "^src/core/" "^$"
    "^src/kinematics/[^/]*$" "^src/core/"
    "^src/kinematics/pose/" "^src/(core/|kinematics/[^/]*$)"
    "^src/kinematics/solve/" "^src/(core/|kinematics/(pose/)?[^/]*$)"
    "^src/kinematics/trajectory/" "^src/(core/|kinematics/((pose|solve)/)?[^/]*$)"
    "^src/qal/model/" "^(solver/closed_form/|solver/reference_arm.h$|src/kinematics/solve/(solver_functions|solution_list).h$)"
    "^src/qal/solve/" "^src/(qal/model/|kinematics/solve/(solver_functions|solution_list|judgement|pose_encoding).h$)"
    "^solver/" "^(solver/|src/kinematics/ikfast.h$)"
    "^(tools|examples)/" "^(src|solver|tools)/")

set(checked 0)
file(GLOB_RECURSE files RELATIVE ${SOURCE_DIR} ${SOURCE_DIR}/src/*.h ${SOURCE_DIR}/src/*.cpp
     ${SOURCE_DIR}/solver/*.h ${SOURCE_DIR}/solver/*.cpp ${SOURCE_DIR}/solver/*.inc
     ${SOURCE_DIR}/tools/*.h ${SOURCE_DIR}/tools/*.cpp ${SOURCE_DIR}/examples/*.cpp)
foreach(file IN LISTS files)
  get_filename_component(folder ${file} DIRECTORY)
  foreach(i RANGE 0 16 2)
    list(GET rules ${i} from)
    if(file MATCHES "${from}")
      math(EXPR next "${i} + 1")
      list(GET rules ${next} allowed)
    endif()
  endforeach()
  file(STRINGS ${SOURCE_DIR}/${file} lines REGEX "^ *# *include *\"")
  foreach(line IN LISTS lines)
    string(REGEX REPLACE "^[^\"]*\"([^\"]*)\".*" "\\1" name "${line}")
    set(included nowhere)
    foreach(root tools src ${folder})  # the last one that has it is the compiler's first
      if(EXISTS ${SOURCE_DIR}/${root}/${name})
        get_filename_component(included ${SOURCE_DIR}/${root}/${name} ABSOLUTE)
        file(RELATIVE_PATH included ${SOURCE_DIR} ${included})
      endif()
    endforeach()
    get_filename_component(included_folder ${included} DIRECTORY)
    if(NOT (included_folder STREQUAL folder OR included MATCHES "${allowed}") OR
       (included MATCHES "/ikfast.h$" AND file MATCHES "/(pose|trajectory)/"))
      message(SEND_ERROR "${file} includes \"${name}\", which it may not know")
    endif()
    math(EXPR checked "${checked} + 1")
  endforeach()
endforeach()
if(checked LESS 50)
  message(SEND_ERROR "Only ${checked} includes found below ${SOURCE_DIR}")
endif()
