# A call against the direction of the layers doesn't compile: planted in a layer's tree, it is refused,
# while what the layer may know is taken.
function(qal_test_layer layer folder allowed forbidden)
  add_test(
    NAME Layers.${layer}
    COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/layers/planted.sh
            ${PROJECT_BINARY_DIR}/layers/${layer}/${folder} ${allowed} ${forbidden}
            ${CMAKE_CXX_COMPILER} -std=c++17 -fsyntax-only)
endfunction()

qal_test_layer(qal_layer_core src/core pos.h ../kinematics/pose/euler.h)
qal_test_layer(qal_layer_pose src/kinematics/pose ../../core/pos.h ../trajectory/line_walk.h)
qal_test_layer(qal_layer_solve src/kinematics/solve ../pose/euler.h ../ikfunc.h)
qal_test_layer(qal_layer_trajectory src/kinematics/trajectory ../solve/inverse.h
               ../facade/messages.h)
qal_test_layer(qal_layer_model src/qal/model pose.h ../solve/kinematics.h)
qal_test_layer(qal_layer_answers src/qal/solve ../model/arm.h ../plan/classic.h)
qal_test_layer(qal_layer_plan src/qal/plan ../../kinematics/trajectory/joint_move.h
               ../../kinematics/ikfunc.h)
qal_test_layer(qal_layer_study src/qal/study ../plan/line.h ../explain/explain.h)
