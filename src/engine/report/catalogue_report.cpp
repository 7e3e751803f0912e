#include "engine/report/frame.hpp"

namespace korvex {
namespace {

constexpr Report::Frame kCatalogueTable{
    "name\tplain\tcrossings\tdeterminant\tsignature\tchirality\talexander\tjones\thomfly\t"
    "gauss_code\n",
    {},
    {},
    {}};

std::string alexander_text(const KnotType& type) {
  std::string text;
  for (const std::int64_t coefficient : type.alexander)
    text.append(text.empty() ? "" : " ").append(std::to_string(coefficient));
  return text;
}

const char* chirality_name(const KnotType& type) {
  return type.chirality == Chirality::kChiral ? "chiral" : "amphichiral";
}

std::string paragraph(const KnotType& type) {
  return type.name + "\n  crossings   " + std::to_string(type.crossings) + "\n  determinant " +
         std::to_string(type.determinant) + "\n  signature   " + std::to_string(type.signature) +
         "\n  chirality   " + chirality_name(type) + "\n  Alexander   " + alexander_text(type) +
         "\n  Jones       " + text_of(type.jones) + "\n  HOMFLY-PT   " + text_of(type.homfly) +
         "\n  Gauss code  " + type.gauss_code + '\n';
}

std::string row(const KnotType& type) {
  return type.name + '\t' + type.plain + '\t' + std::to_string(type.crossings) + '\t' +
         std::to_string(type.determinant) + '\t' + std::to_string(type.signature) + '\t' +
         chirality_name(type) + '\t' + alexander_text(type) + '\t' + text_of(type.jones) + '\t' +
         text_of(type.homfly) + '\t' + type.gauss_code + '\n';
}

Json json_of(const KnotType& type) {
  return {{"name", type.name},
          {"plain", type.plain},
          {"crossings", type.crossings},
          {"determinant", type.determinant},
          {"signature", type.signature},
          {"chirality", chirality_name(type)},
          {"alexander", type.alexander},
          {"jones", text_of(type.jones)},
          {"homfly", text_of(type.homfly)},
          {"gauss_code", type.gauss_code}};
}

}  // namespace

CatalogueReport::CatalogueReport(ReportFormat format, std::ostream& out)
    : Report(format, frame_for(format, "the catalogue", catalogue_formats(), kCatalogueTable),
             out) {}

void CatalogueReport::add(const KnotType& type) {
  switch (format()) {
    case ReportFormat::kText:
      return put(paragraph(type));
    case ReportFormat::kTsv:
      return put(row(type));
    default:
      return put(in_array(json_of(type)));
  }
}

}  // namespace korvex
