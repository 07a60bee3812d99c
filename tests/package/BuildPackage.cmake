# Installs the tree's build, builds the host project and the guide's with it and makes a demo store for it, all in FOLDER anew.
file(REMOVE_RECURSE ${FOLDER})

function(run)
  execute_process(COMMAND ${ARGV} COMMAND_ECHO STDOUT COMMAND_ERROR_IS_FATAL ANY)
endfunction()

run(${CMAKE_COMMAND} --install ${TREE} --prefix ${FOLDER}/installed)
# Both at once; what one prints is not for the other.
set(apart sh -c "exec \"$0\" \"$@\" >&2")
set(how -G ${GENERATOR} -DCMAKE_PREFIX_PATH=${FOLDER}/installed -DCMAKE_BUILD_TYPE=${CONFIG}
    -DCMAKE_CXX_COMPILER=${COMPILER} -DCMAKE_CXX_FLAGS=${FLAGS} -DQt6_DIR=${QT})
run(${apart} ${CMAKE_COMMAND} -S ${HOST} -B ${FOLDER}/build ${how}
    COMMAND ${CMAKE_COMMAND} -S ${HOST}/../../docs/host -B ${FOLDER}/guide ${how})
run(${apart} ${CMAKE_COMMAND} --build ${FOLDER}/build COMMAND ${CMAKE_COMMAND} --build ${FOLDER}/guide)

# The program looks in this folder only where it exists.
file(MAKE_DIRECTORY "${FOLDER}/data/Brevank/Parlon+")
set(ENV{PROGRAMDATA} ${FOLDER}/data)
run(${FOLDER}/installed/bin/auto-node init --demo)
