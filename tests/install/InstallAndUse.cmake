# Installs the library into an empty folder, configures and builds the consumer against it, and runs it.
file(REMOVE_RECURSE ${PREFIX} ${CONSUMER_BUILD})

function(run)
  execute_process(COMMAND ${ARGN} COMMAND_ECHO STDOUT COMMAND_ERROR_IS_FATAL ANY)
endfunction()

set(flags ${FLAGS})
if(SANITIZE)
  string(APPEND flags " -fsanitize=${SANITIZE}")
endif()

run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${PREFIX} --component library)
run(${CMAKE_COMMAND} -S ${CONSUMER} -B ${CONSUMER_BUILD} -G ${GENERATOR}
  -D CMAKE_C_COMPILER=${C_COMPILER} -D CMAKE_C_FLAGS=${flags}
  -D CMAKE_CXX_COMPILER=${COMPILER} -D CMAKE_CXX_FLAGS=${flags} -D CMAKE_PREFIX_PATH=${PREFIX}
  -D HEADERS=${PREFIX}/include/pm_limited_support)
run(${CMAKE_COMMAND} --build ${CONSUMER_BUILD})
run(${CONSUMER_BUILD}/consumer)
