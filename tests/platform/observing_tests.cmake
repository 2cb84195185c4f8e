vornic_test(tst_observing.cpp LIBS vornic::platform LABELS unit)
vornic_test(tst_keyed_archive.cpp LIBS vornic::platform LABELS unit)
