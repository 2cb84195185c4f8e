// Exists so that the headers that tests share are compiled once for all of them.
