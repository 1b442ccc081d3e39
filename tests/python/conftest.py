from hypothesis import settings

# The same examples each time, however slow the machine, and no folder for those that failed.
settings.register_profile("zelk", derandomize=True, deadline=None, database=None)
settings.load_profile("zelk")
