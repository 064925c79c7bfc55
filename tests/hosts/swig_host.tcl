#!/usr/bin/env tclsh
# A host that is a script, with the functions that SWIG made.
#
#     swig_host.tcl PROJECT_DIRECTORY MODULE
lassign $argv project module
load $module vestra

proc expect {what answer expected} {
  puts "host: $what: $answer"
  if {$answer ne $expected} {
    exit 1
  }
}
Vestra_add runs 2 $Vestra_KELVO_USAGE
expect "the report is sent" [Vestra_send $project $Vestra_KELVO] 1
expect "a second one is not due" [Vestra_send $project $Vestra_KELVO] 0
expect "the log's name" [Vestra_getLogFileName] $project/vestra/tavlo_vestra.log
file mkdir $project/gone
cd $project/gone
file delete $project/gone
expect "an exception is an error" [catch {Vestra_send $project $Vestra_KELVO} message] 1
expect "its text" [string match *current_path* $message] 1
