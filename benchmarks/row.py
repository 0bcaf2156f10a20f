"""One line of the benchmark table."""

from dataclasses import dataclass


@dataclass
class Row:
    what: str
    measured: str
    yardstick: str = "-"
    value: float = 0.0  # what is compared with the limit: a ratio, or the figure itself
    limit: float = 0.0
    is_ratio: bool = True

    def missed(self):
        return self.value > self.limit

    def __str__(self):
        ratio = f"{self.value:.2f}" if self.is_ratio else "-"
        limit = f"<= {self.limit:g}" + (" times" if self.is_ratio else "")
        mark = "  MISSED" if self.missed() else ""
        return f"{self.what:56} {self.measured:>14} {self.yardstick:>14} {ratio:>6} {limit:>14}{mark}"

    @staticmethod
    def heading():
        return f"{'':56} {'measured':>14} {'yardstick':>14} {'ratio':>6} {'limit':>14}"
