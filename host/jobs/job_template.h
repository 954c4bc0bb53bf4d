// The work of a batch as a job template of Open Job Description.
#pragma once

#include <span>
#include <string>

#include "host/jobs/task_plan.h"

namespace kelto::host {

/// A template of version 2023-09 without extensions, in JSON. Films with the same options are a
/// step, whose tasks have the names of picture, film and record as parameters of type PATH, so that
/// farms can map them. Throws Error for a name or word that a template cannot hold; "" where there
/// is no task.
std::string JobTemplate(const std::string& program, std::span<const FilmTask> tasks);

}  // namespace kelto::host
