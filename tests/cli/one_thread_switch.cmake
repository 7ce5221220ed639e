# orvane-cli simulate and calc with ORVANE_THREADS=1 (every run on one
# thread) and with the machine's threads told explicitly to be several: the
# same output, byte for byte. Includes a run of 39,650 samples, a count whose
# draws reject about one word in 100,000 (the most of any count that fits on
# a command line), so that split runs must run blocks again.
#   cmake -DCLI=path/to/orvane-cli -DDIR=scratch-folder -P one_thread_switch.cmake
file(REMOVE_RECURSE "${DIR}")
file(MAKE_DIRECTORY "${DIR}")
string(REPEAT "3,5,4,6,2,7,5,4,1,0," 3965 many)
string(REGEX REPLACE ",$" "" many "${many}")
file(WRITE "${DIR}/roadmap.json"
     "{\"asOf\":\"2026-03-05\",\"history\":[3,5,4,6,2,7,5,4,3,6,5,4],\"epics\":[{\"id\":\"a\",\"open\":20},"
     "{\"id\":\"b\",\"open\":33,\"predecessors\":[\"a\"]},{\"id\":\"c\",\"open\":5,\"dueDay\":\"2026-04-01\"}]}")
set(runs
    "simulate|--samples|3,5,4,6,2,7,5,4,3,6,5,4|--backlog|100|--as-of|2026-03-05|--json"
    "simulate|--samples|1.5,2.25,0,7|--backlog|37|--what-if|-12.5|--horizon|30|--as-of|2026-03-05|--json"
    "simulate|--samples|${many}|--backlog|60|--seed|5|--iterations|3000|--horizon|9|--as-of|2026-03-05|--json"
    "calc|roadmap|${DIR}/roadmap.json")
foreach(run IN LISTS runs)
  string(REPLACE "|" ";" args "${run}")  # one run's arguments, | between them
  execute_process(COMMAND ${CMAKE_COMMAND} -E env ORVANE_THREADS=1 "${CLI}" ${args}
                  RESULT_VARIABLE code1 OUTPUT_VARIABLE serial ERROR_VARIABLE err1)
  execute_process(COMMAND ${CMAKE_COMMAND} -E env ORVANE_THREADS=4 "${CLI}" ${args}
                  RESULT_VARIABLE code4 OUTPUT_VARIABLE split ERROR_VARIABLE err4)
  string(SUBSTRING "${run}" 0 60 shown)
  if(NOT code1 EQUAL 0 OR NOT code4 EQUAL 0)
    message(FATAL_ERROR "${shown}...: exit codes ${code1} and ${code4}: ${err1}${err4}")
  endif()
  if(NOT serial STREQUAL split)
    message(FATAL_ERROR "${shown}...: one thread and four threads print different results")
  endif()
endforeach()
file(REMOVE_RECURSE "${DIR}")
