# orvane on a file that is not a store, without a display: the one sentence
# on stderr, exit code 1, and the file exactly as it was.
#   cmake -DAPP=path/to/orvane -DDIR=scratch-folder -P fatal_store_open.cmake
set(file "${DIR}/not-a-store.sqlite")
set(content "These are someone's notes, not a database.\n")
file(MAKE_DIRECTORY "${DIR}")
file(WRITE "${file}" "${content}")
execute_process(COMMAND "${APP}" --store "${file}" RESULT_VARIABLE code OUTPUT_VARIABLE out ERROR_VARIABLE err)
file(READ "${file}" after)
file(REMOVE_RECURSE "${DIR}")
if(NOT code EQUAL 1)
  message(FATAL_ERROR "exit code ${code}, expected 1; stderr: ${err}")
endif()
if(NOT err MATCHES "^The database could not be opened: [^\n]+\n$")
  message(FATAL_ERROR "unexpected stderr: ${err}")
endif()
if(NOT after STREQUAL content)
  message(FATAL_ERROR "the file was changed")
endif()
