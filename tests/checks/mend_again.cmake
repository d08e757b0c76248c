# Applies the mendings to the source in `root`, as the build does.
include(${CMAKE_CURRENT_LIST_DIR}/../../third_party/mimetic/mend.cmake)
zqv_mend_mimetic(${root})
