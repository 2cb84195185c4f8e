target_sources(vornic_platform PRIVATE
  key_path_binding.cpp
  key_path_observer.cpp
  observable_object.cpp
)
target_sources(vornic_platform PUBLIC FILE_SET HEADERS FILES
  key_path_binding.h
  key_path_observer.h
  observable_object.h
)
