// A plan as the JSON of a project has it, and the JSON of a plan.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "host/plan/render_plan.h"

namespace kelto::host {

/// The plan of a document that keeps to the schema, is of one picture, and stands in the file
/// `path`. Throws Error, "FIELD: what is wrong".
RenderPlan PlanOfFilm(const nlohmann::json& document, const std::string& path);

/// Throws Error for the fields of a document of one picture that only shows have.
void RefuseShowsFields(const nlohmann::json& document);

/// The text of a field that is drawn into frames; empty where the document lacks it. Throws Error
/// for one that is too long.
std::string ReadLetters(const nlohmann::json& document, const char* field);

/// Throws what PlanOfFilm would for its field "film".
void CheckFilm(const nlohmann::json& film);

/// The fields of a document of which PlanOfFilm makes the same plan, for the file `path`.
nlohmann::ordered_json FilmJson(const std::string& path, const RenderPlan& plan);

}  // namespace kelto::host
