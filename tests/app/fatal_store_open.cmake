# orvane on a file that is not a store, on a folder and on a pipe, without a
# display: one sentence on stderr, exit code 1 at once, and the file exactly
# as it was.
#   cmake -DAPP=path/to/orvane -DDIR=scratch-folder -P fatal_store_open.cmake
set(file "${DIR}/not-a-store.sqlite")
set(content "These are someone's notes, not a database.\n")
file(REMOVE_RECURSE "${DIR}")
file(MAKE_DIRECTORY "${DIR}")
file(WRITE "${file}" "${content}")
execute_process(COMMAND mkfifo "${DIR}/pipe.sqlite" RESULT_VARIABLE fifo_code)

function(expect_refusal store sentence)
  # A pipe would block SQLite for ever: the timeout turns a hang into a failure.
  execute_process(COMMAND "${APP}" --store "${store}" RESULT_VARIABLE code OUTPUT_VARIABLE out ERROR_VARIABLE err
                  TIMEOUT 20)
  if(NOT code EQUAL 1)
    message(FATAL_ERROR "${store}: exit code ${code}, expected 1; stderr: ${err}")
  endif()
  if(NOT err MATCHES "^The database could not be opened: ${sentence}[^\n]*\n$")
    message(FATAL_ERROR "${store}: unexpected stderr: ${err}")
  endif()
endfunction()

expect_refusal("${file}" "\"[^\n]+\" is not an Orvane database[.]")
expect_refusal("${DIR}" "\"[^\n]+\" is a folder, not a database file")
if(fifo_code EQUAL 0)
  expect_refusal("${DIR}/pipe.sqlite" "\"[^\n]+\" is not a regular file")
endif()
file(READ "${file}" after)
file(REMOVE_RECURSE "${DIR}")
if(NOT after STREQUAL content)
  message(FATAL_ERROR "the file was changed")
endif()
