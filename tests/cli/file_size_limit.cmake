# orvane-cli backup under a file-size limit (ulimit -f) smaller than the
# backup: one sentence on stderr, exit code 1, the old backup as it was and
# no temporary file beside it.
#   cmake -DCLI=path/to/orvane-cli -DDIR=scratch-folder -P file_size_limit.cmake
set(store "${DIR}/store.sqlite")
set(backup "${DIR}/backup.json")
file(REMOVE_RECURSE "${DIR}")
file(MAKE_DIRECTORY "${DIR}")
string(REPEAT "A ticket title long enough to make the backup grow\n" 2000 rows)
file(WRITE "${DIR}/tickets.csv" "title\n${rows}")
file(WRITE "${backup}" "old\n")
execute_process(COMMAND "${CLI}" --store "${store}" project create Shop RESULT_VARIABLE code ERROR_VARIABLE err)
execute_process(COMMAND "${CLI}" --store "${store}" import Shop "${DIR}/tickets.csv"
                RESULT_VARIABLE code2 OUTPUT_QUIET ERROR_VARIABLE err2)
if(NOT code EQUAL 0 OR NOT code2 EQUAL 0)
  message(FATAL_ERROR "setting up the store failed: ${err}${err2}")
endif()
# 64 blocks of 1024 bytes: room to read the store, not to write the backup.
execute_process(COMMAND bash -c "ulimit -f 64 && exec \"$0\" --store \"$1\" backup \"$2\"" "${CLI}" "${store}"
                        "${backup}"
                RESULT_VARIABLE code OUTPUT_VARIABLE out ERROR_VARIABLE err)
file(READ "${backup}" after)
file(GLOB leftovers "${DIR}/.backup.json*")
file(REMOVE_RECURSE "${DIR}")
if(NOT code EQUAL 1)
  message(FATAL_ERROR "exit code ${code}, expected 1; stderr: ${err}")
endif()
if(NOT err STREQUAL "The backup could not be written: ${backup}. It would be larger than the file size limit allows.\n")
  message(FATAL_ERROR "unexpected stderr: ${err}")
endif()
if(NOT after STREQUAL "old\n")
  message(FATAL_ERROR "the old backup was changed")
endif()
if(leftovers)
  message(FATAL_ERROR "temporary files left behind: ${leftovers}")
endif()
