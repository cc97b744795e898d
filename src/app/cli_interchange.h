// ovaro-cli export, import and import-matrix: the File menu's exchange with the older batch
// solvers' input files and with matrix files, without a window.
//
//   ovaro-cli export MODEL OUT --format qlp|veld|veldpc [--json]
//   ovaro-cli import FILE OUT.ovi --format qlp|veld [--debug DBG] [--json]
//   ovaro-cli import-matrix MODEL OUT --matrix NAME --file F.dma [--columns K] [--debug DBG]
//             [--json]
//
// --json prints {"ok", "messages"} and, for import-matrix, "cells": the matrix's rows of cell
// texts after the import.
#pragma once

#include <CLI/CLI.hpp>

#include <iosfwd>
#include <string>

namespace ovaro::cli {

struct ExportOptions {
  std::string model;
  std::string out;
  std::string format;
  bool json = false;
};

struct ImportOptions {
  std::string file;
  std::string out;
  std::string format;
  std::string debug;
  bool json = false;
};

struct ImportMatrixOptions {
  std::string model;
  std::string out;
  std::string matrix;
  std::string file;
  int columns = 5;
  std::string debug;
  bool json = false;
};

CLI::App* addExportCommand(CLI::App& app, ExportOptions& o);
CLI::App* addImportCommand(CLI::App& app, ImportOptions& o);
CLI::App* addImportMatrixCommand(CLI::App& app, ImportMatrixOptions& o);

// Each returns 0 done, 1 a file that cannot be read, refused or written, 2 a matrix name that the
// model does not hold.
int exportModel(const ExportOptions& o, std::ostream& out, std::ostream& err);
int importModel(const ImportOptions& o, std::ostream& out, std::ostream& err);
int importMatrix(const ImportMatrixOptions& o, std::ostream& out, std::ostream& err);

}  // namespace ovaro::cli
