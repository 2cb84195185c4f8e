// Nothing but the headers that tests share is compiled here, once for all of them.
