# Installs the tree's build, builds the host project and the guide's with it and makes a demo store for it, all in FOLDER anew.
file(REMOVE_RECURSE ${FOLDER})

function(run)
  execute_process(COMMAND ${ARGV} COMMAND_ECHO STDOUT COMMAND_ERROR_IS_FATAL ANY)
endfunction()

run(${CMAKE_COMMAND} --install ${TREE} --prefix ${FOLDER}/installed)
function(build name source)
  run(${CMAKE_COMMAND} -S ${source} -B ${FOLDER}/${name} -G ${GENERATOR} -DCMAKE_PREFIX_PATH=${FOLDER}/installed
      -DCMAKE_BUILD_TYPE=${CONFIG} -DCMAKE_CXX_COMPILER=${COMPILER} -DCMAKE_CXX_FLAGS=${FLAGS} -DQt6_DIR=${QT})
  run(${CMAKE_COMMAND} --build ${FOLDER}/${name})
endfunction()
build(build ${HOST})
build(guide ${HOST}/../../docs/host)

# The program looks in this folder only where it exists.
file(MAKE_DIRECTORY "${FOLDER}/data/Brevank/Parlon+")
set(ENV{PROGRAMDATA} ${FOLDER}/data)
run(${FOLDER}/installed/bin/auto-node init --demo)
