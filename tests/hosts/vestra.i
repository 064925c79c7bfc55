// What SWIG makes of the header for a script: its functions, with exceptions as the
// script's own errors.
%module vestra
%{
#include <exception>

#include <vestra/vestra.h>
%}
%include <exception.i>
%include <std_string.i>
%include <stdint.i>
%exception {
  try {
    $action
  } catch (const std::exception& error) {
    SWIG_exception(SWIG_RuntimeError, error.what());
  }
}
%immutable;
#define VESTRA_EXPORT
%include <vestra/vestra.h>
