qal_test_program(qal_solver_test SOURCES solver/lanes_test.cpp solver/reference_solver_test.cpp
                 LIBRARIES ik)
target_include_directories(qal_solver_test PRIVATE ${PROJECT_SOURCE_DIR}/src)

# What it solves: random poses, singular ones and near them, against its forward kinematics and
# that of the arm's description. A sanitizer makes it minutes; the fuzz replays run the solver there.
if(QAL_BUILD_TOOLS AND NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize")
  add_test(NAME ReferenceSolver.IsSound
           COMMAND ikcheck $<TARGET_FILE:ik> --strict --arm
                   ${PROJECT_SOURCE_DIR}/arms/reference.urdf)
endif()

# The general method, of which the reference arm's solver has nothing.
qal_test_program(qal_general_solver_test SOURCES solver/general_test.cpp LIBRARIES qal_static)
